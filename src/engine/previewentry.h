#pragma once

#include <QString>

namespace quillfern {

/// One row of a preview: a file's current full name, its full new name, and whether that new name collides
/// (case-insensitively) with the new name of an earlier file of the same batch.
struct PreviewEntry
{
    QString original;
    QString preview;
    bool hasConflict = false;

    friend bool operator==(const PreviewEntry &, const PreviewEntry &) = default;
};

} // namespace quillfern
