#pragma once

#include <unicode/brkiter.h>

#include <memory>

namespace quillfern {

/// An ICU break iterator of the root locale, created on first use: most names are ASCII and never need one,
/// and creating one costs more than naming thousands of them. Not thread-safe.
class LazyBreakIterator final
{
public:
    enum class Kind {
        Character,
        Word,
    };

    explicit LazyBreakIterator(Kind kind)
        : m_kind(kind)
    {
    }

    /// The iterator; none when ICU cannot create it.
    [[nodiscard]] icu::BreakIterator *get();

private:
    Kind m_kind;
    bool m_isCreated = false;
    std::unique_ptr<icu::BreakIterator> m_iterator;
};

} // namespace quillfern
