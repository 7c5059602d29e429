#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <compare>
#include <filesystem>
#include <functional>
#include <optional>

namespace quillfern {

/// A location on disk spelt exactly as the operating system spells it: bytes on POSIX systems, so that a name
/// that is not valid UTF-8 can still be found and renamed, and UTF-16 units on Windows. It is one implicitly
/// shared string: a list of 100,000 files copies, hashes and compares its locations all the time, so a copy
/// must not allocate, and std::filesystem::path keeps every component as a path of its own.
class NativePath final
{
public:
    using value_type = std::filesystem::path::value_type;
#ifdef Q_OS_WIN
    using string_type = QString;
    using view_type = QStringView;
#else
    using string_type = QByteArray;
    using view_type = QByteArrayView;
#endif

    NativePath() = default;
    explicit NativePath(string_type native)
        : m_native(std::move(native))
    {
    }
    // Implicit on purpose, as std::filesystem::path's own are: a C string and a std::filesystem::path already
    // spell a native location, and converting them loses nothing.
    NativePath(const value_type *native); // NOLINT(google-explicit-constructor)
    NativePath(const std::filesystem::path &path); // NOLINT(google-explicit-constructor)

    /// The native path for a text (UTF-8 bytes on POSIX).
    static NativePath fromText(const QString &text);
    /// The native path for a text from toEscapedText() or rules applied to it: UTF-8 bytes on POSIX, where each
    /// lone surrogate U+DC80..U+DCFF is written as the byte it carries (U+DCE9 as 0xE9), so the bytes of a name
    /// that is not valid UTF-8 come back; any other lone surrogate is written as fromText() writes it.
    static NativePath fromEscapedText(const QString &text);
    /// The escaped text as it is shown: each lone surrogate U+DC80..U+DCFF, an escaped byte, as U+FFFD.
    [[nodiscard]] static QString displayText(const QString &escapedText);
    /// The native path of a local file URL, bytes that are not valid UTF-8 included (from their
    /// percent-encoded form); none for a URL that is not a local file.
    static std::optional<NativePath> fromLocalFileUrl(const QUrl &url);

    [[nodiscard]] const string_type &native() const
    {
        return m_native;
    }
    /// The native spelling, terminated by a zero, for the system's calls.
    [[nodiscard]] const value_type *c_str() const;
    [[nodiscard]] bool isEmpty() const
    {
        return m_native.isEmpty();
    }
    [[nodiscard]] std::filesystem::path toStdPath() const;

    /// The text for display and for the rules, every character kept (a leading byte order mark too); bytes
    /// that are not valid UTF-8 become U+FFFD.
    [[nodiscard]] QString toText() const;
    /// The text for the rules, from which fromEscapedText() gives this path back: as toText(), but on POSIX each
    /// byte that is not part of valid UTF-8 becomes the lone surrogate U+DC00 + byte (0xE9 becomes U+DCE9).
    [[nodiscard]] QString toEscapedText() const;
    /// The last component, the item's name: "c" for "/a/b/c"; empty for a root or a path ending in a separator.
    [[nodiscard]] NativePath fileName() const;
    /// The text of fileName().
    [[nodiscard]] QString fileNameText() const;
    /// The escaped text of fileName().
    [[nodiscard]] QString fileNameEscapedText() const;
    /// Where the last component starts in native(): the folder part, separator included, comes before it.
    [[nodiscard]] qsizetype fileNameOffset() const;
    /// The folder that holds the item: "/a/b" for "/a/b/c", "/" for "/a", empty for a bare name.
    [[nodiscard]] NativePath parent() const;
    /// The location of `name` inside this folder.
    [[nodiscard]] NativePath operator/(const NativePath &name) const;
    /// The location in the same folder under another name.
    [[nodiscard]] NativePath withFileName(const NativePath &name) const;
    /// The path without trailing separators, so its last component is the item's name ("a/b/" names "b"); a
    /// root stays as it is.
    [[nodiscard]] NativePath withoutTrailingSeparator() const &;
    [[nodiscard]] NativePath withoutTrailingSeparator() &&;
    /// Whether this is `folder` itself or lies anywhere below it ("/ab" is not below "/a").
    [[nodiscard]] bool isWithin(const NativePath &folder) const;

    friend bool operator==(const NativePath &, const NativePath &) = default;
    friend std::strong_ordering operator<=>(const NativePath &left, const NativePath &right)
    {
        return left.m_native.compare(right.m_native) <=> 0;
    }

private:
    string_type m_native;
};

/// Paths hash by their native spelling.
size_t qHash(const NativePath &path, size_t seed = 0) noexcept;

} // namespace quillfern

Q_DECLARE_TYPEINFO(quillfern::NativePath, Q_RELOCATABLE_TYPE);

template<>
struct std::hash<quillfern::NativePath>
{
    size_t operator()(const quillfern::NativePath &path) const noexcept { return quillfern::qHash(path); }
};
