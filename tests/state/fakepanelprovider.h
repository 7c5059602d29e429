#pragma once

#include "model/nativepath.h"
#include "state/panelprovider.h"

/// A panel provider that answers with prepared choices and records what it was asked.
class FakePanelProvider final : public quillfern::PanelProvider
{
public:
    std::optional<QList<quillfern::NativePath>> chooseFilesAndFolders(const QString &title) override
    {
        openTitles << title;
        return openAnswer;
    }

    std::optional<quillfern::NativePath> chooseSaveLocation(const QString &proposedName,
        const QString &nameFilter) override
    {
        proposedNames << proposedName;
        nameFilters << nameFilter;
        return saveAnswer;
    }

    std::optional<QList<quillfern::NativePath>> openAnswer;
    std::optional<quillfern::NativePath> saveAnswer;
    QStringList openTitles;
    QStringList proposedNames;
    QStringList nameFilters;
};
