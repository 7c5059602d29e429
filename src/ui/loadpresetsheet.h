#pragma once

#include <QDialog>

class QVBoxLayout;

namespace quillfern {

class AppViewModel;
class PresetManager;
struct Preset;

/// The modal sheet that lists the stored presets, each with its symbol, name, rule count and a "Load" button
/// that replaces the current rules by the preset's and closes the sheet. "Cancel" (or Escape) closes it.
class LoadPresetSheet final : public QDialog
{
    Q_OBJECT

public:
    LoadPresetSheet(AppViewModel *vm, PresetManager *presetManager, QWidget *parent = nullptr);

private:
    void showPresets();
    QWidget *makeRow(const Preset &preset, QWidget *parent);

    AppViewModel *m_vm;
    PresetManager *m_presetManager;
    QWidget *m_list;
};

} // namespace quillfern
