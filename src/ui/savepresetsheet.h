#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;

namespace quillfern {

class AppViewModel;
class PresetManager;

/// The modal sheet that saves the current rules as a new preset under a typed name. "Save" is disabled while
/// the name is empty (a name of spaces is accepted); after saving, the sheet closes and the name is emptied.
/// "Cancel" (or Escape) closes it and keeps the typed name for the next opening.
class SavePresetSheet final : public QDialog
{
    Q_OBJECT

public:
    SavePresetSheet(AppViewModel *vm, PresetManager *presetManager, QWidget *parent = nullptr);

    /// The name typed so far.
    [[nodiscard]] QString presetName() const;

private:
    void save();

    AppViewModel *m_vm;
    PresetManager *m_presetManager;
    QLineEdit *m_nameField;
    QPushButton *m_saveButton;
};

} // namespace quillfern
