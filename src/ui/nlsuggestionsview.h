#pragma once

#include <QFrame>

class QPushButton;
class QVBoxLayout;

namespace quillfern {

class AppViewModel;
struct ParsedRule;

/// The card that lists the natural-language suggestions of the state object, each with its kind's symbol,
/// description and whole-percent confidence, above the buttons "Apply All" (adds every suggested rule) and
/// "Dismiss" (empties the suggestions; the typed command stays). Shown exactly while there are suggestions;
/// the pane places it.
class NLSuggestionsView final : public QFrame
{
    Q_OBJECT

public:
    explicit NLSuggestionsView(AppViewModel *vm, QWidget *parent = nullptr);

    [[nodiscard]] QPushButton *applyAllButton() const { return m_applyAllButton; }
    [[nodiscard]] QPushButton *dismissButton() const { return m_dismissButton; }

    /// The confidence as the whole percentage shown: the integer part of confidence × 100, then "%".
    [[nodiscard]] static QString confidenceText(double confidence);

private:
    void showSuggestions();
    QWidget *makeRow(const ParsedRule &suggestion);

    AppViewModel *m_vm;
    QVBoxLayout *m_rows;
    QPushButton *m_applyAllButton;
    QPushButton *m_dismissButton;
};

} // namespace quillfern
