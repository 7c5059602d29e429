#pragma once

#include "state/panelprovider.h"

#include <QStringList>

/// A panel provider for view tests: records what the views asked for and answers with prepared choices
/// (cancelling by default).
class RecordingPanelProvider final : public quillfern::PanelProvider
{
public:
    std::optional<QList<std::filesystem::path>> chooseFilesAndFolders(const QString &title) override
    {
        openTitles << title;
        return openAnswer;
    }

    std::optional<std::filesystem::path> chooseSaveLocation(const QString &proposedName,
        const QString &nameFilter) override
    {
        proposedNames << proposedName;
        nameFilters << nameFilter;
        return saveAnswer;
    }

    std::optional<QList<std::filesystem::path>> openAnswer;
    std::optional<std::filesystem::path> saveAnswer;
    QStringList openTitles;
    QStringList proposedNames;
    QStringList nameFilters;
};
