#pragma once

#include "model/renameresult.h"

#include <QByteArray>
#include <QElapsedTimer>

#include <cstdio>

namespace quillfern {

/// Writes the line of each rename result as the move is done. Lines are gathered for a moment before they are
/// written, so that 100,000 moves do not cost 100,000 writes, but never for long: a user watching a batch, or
/// one that is stopped, sees what was done.
class ResultLineWriter final
{
public:
    explicit ResultLineWriter(FILE *stream);
    ~ResultLineWriter();
    ResultLineWriter(const ResultLineWriter &) = delete;
    ResultLineWriter &operator=(const ResultLineWriter &) = delete;

    void write(const RenameResult &result);
    void flush();

private:
    FILE *m_stream;
    QByteArray m_lines;
    QElapsedTimer m_sinceFlush;
};

} // namespace quillfern
