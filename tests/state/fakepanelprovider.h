#pragma once

#include "state/panelprovider.h"

/// A panel provider that answers with prepared choices and records what it was asked.
class FakePanelProvider final : public quillfern::PanelProvider
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
