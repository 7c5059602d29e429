#include "engine/lazybreakiterator_p.h"
#include "model/icutext_p.h"

namespace quillfern {

icu::BreakIterator *LazyBreakIterator::get()
{
    if (m_isCreated)
        return m_iterator.get();
    m_isCreated = true;
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale &root = icu::Locale::getRoot();
    m_iterator.reset(m_kind == Kind::Character ? icu::BreakIterator::createCharacterInstance(root, status)
                                               : icu::BreakIterator::createWordInstance(root, status));
    if (!icutext::succeeded(status))
        m_iterator.reset();
    return m_iterator.get();
}

} // namespace quillfern
