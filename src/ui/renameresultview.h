#pragma once

#include <QDialog>

namespace quillfern {

class AppViewModel;

/// The sheet shown after a batch rename: a checkmark or warning icon, a heading, how many files were renamed
/// and how many failed, one row per failure with its reason, and "Done". Closing it in any way clears
/// AppViewModel::showRenameResult, and it closes itself when that flag is cleared elsewhere.
class RenameResultView final : public QDialog
{
    Q_OBJECT

public:
    /// Shows vm's lastRenameResults as they are at construction.
    RenameResultView(AppViewModel *vm, QWidget *parent);

private:
    [[nodiscard]] QWidget *makeCounters(qsizetype successCount, qsizetype failCount);
    [[nodiscard]] QWidget *makeErrorBox();

    AppViewModel *m_vm;
};

} // namespace quillfern
