#include "engine/moveerrors_p.h"

using namespace Qt::StringLiterals;

namespace quillfern::moveerrors {

MoveError destinationExists(const NativePath &to)
{
    return MoveError{MoveError::Kind::DestinationExists, u"A file named “%1” already exists."_s.arg(to.fileNameText())};
}

MoveError systemError(const std::error_code &code)
{
    return MoveError{MoveError::Kind::Other, QString::fromStdString(code.message())};
}

} // namespace quillfern::moveerrors
