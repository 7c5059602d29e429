#pragma once

#include <QDialog>

class QScrollArea;
class QVBoxLayout;

namespace quillfern {

class AppViewModel;
class PresetManager;
struct Preset;

/// The modal sheet that lists the stored presets, each with its symbol, name, rule count and a "Load" button
/// that replaces the current rules by the preset's and closes the sheet. "Cancel" (or Escape) closes it. The
/// sheet takes the size of its rows within its window; a name too long for it is cut, whole in its tooltip.
class LoadPresetSheet final : public QDialog
{
    Q_OBJECT

public:
    LoadPresetSheet(AppViewModel *vm, PresetManager *presetManager, QWidget *parent = nullptr);

    void setVisible(bool visible) override;

private:
    void showPresets();
    void fitToContent();
    QWidget *makeRow(const Preset &preset, QWidget *parent);

    AppViewModel *m_vm;
    PresetManager *m_presetManager;
    QWidget *m_list;
    QScrollArea *m_scrollArea = nullptr;
};

} // namespace quillfern
