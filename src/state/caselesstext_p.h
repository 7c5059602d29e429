#pragma once

#include <QString>

#include <optional>

/// The form in which the filter compares names: texts that are canonically equivalent and differ only in case
/// have the same form, so a name stored decomposed ("e" and a combining acute) is found by a filter typed
/// composed ("É"), and the other way round. Accents still count: "e" and "é" have different forms.
namespace quillfern::caselesstext {

/// The caseless form of any text: composed (NFC) after full case folding, so "ß" reads "ss".
[[nodiscard]] QString caselessForm(const QString &text);

/// The caseless form worked out by ICU, whatever the text holds; when ICU fails, the text only folded.
[[nodiscard]] QString caselessFormByIcu(const QString &text);

/// The caseless form of a text of ASCII only, worked out in one pass; none when the text holds anything else.
[[nodiscard]] std::optional<QString> caselessFormOfAscii(QStringView text);

} // namespace quillfern::caselesstext
