#pragma once

#include <QString>
#include <QStringView>

namespace quillfern {

/// The noun for a count, with a plural "s" unless the count is 1: "file" for 1, "files" for 0 or 2.
QString plural(qsizetype count, QStringView noun);

/// The count as a plain integer followed by its noun: "1 file", "2 files", "0 files".
QString counted(qsizetype count, QStringView noun);

} // namespace quillfern
