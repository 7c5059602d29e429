#include "model/counting.h"

namespace quillfern {

QString plural(qsizetype count, QStringView noun)
{
    return count == 1 ? noun.toString() : noun + u's';
}

QString counted(qsizetype count, QStringView noun)
{
    return QString::number(count) + u' ' + plural(count, noun);
}

} // namespace quillfern
