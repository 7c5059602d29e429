#include "cli/resultlinewriter.h"

#include "cli/previewprinter.h"

namespace quillfern {

namespace {

constexpr qsizetype largestPiece = 64 * 1024;
constexpr qint64 longestWaitMilliseconds = 100;

} // namespace

ResultLineWriter::ResultLineWriter(FILE *stream)
    : m_stream(stream)
{
    m_lines.reserve(largestPiece + 1024);
    m_sinceFlush.start();
}

ResultLineWriter::~ResultLineWriter()
{
    flush();
}

void ResultLineWriter::write(const RenameResult &result)
{
    PreviewPrinter::appendResultLine(m_lines, result);
    if (m_lines.size() >= largestPiece || m_sinceFlush.elapsed() >= longestWaitMilliseconds)
        flush();
}

void ResultLineWriter::flush()
{
    std::fwrite(m_lines.constData(), 1, std::size_t(m_lines.size()), m_stream);
    std::fflush(m_stream);
    m_lines.resize(0);
    m_sinceFlush.restart();
}

} // namespace quillfern
