#pragma once

#include "presets/preset.h"

#include <QList>
#include <QObject>
#include <QString>

namespace quillfern {

/// Keeps the user's presets in display order and stores them in "Quillfern/Presets/presets.json" under the
/// user's data folder. Every change is written at once; write failures are swallowed and leave the list in
/// memory as it is. Main thread only.
class PresetManager final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<Preset> presets READ presets NOTIFY presetsChanged)

public:
    /// Creates the presets folder and loads the file. When that gives no presets (no file, an empty list or a
    /// file that cannot be decoded), the five built-in presets take their place and are written. A file that
    /// cannot be decoded is first kept beside it as "presets.json.bak"; if it cannot be kept, it is not
    /// overwritten now.
    explicit PresetManager(QObject *parent = nullptr);

    /// The presets in display order.
    const QList<Preset> &presets() const;

    /// Replaces the preset with the same id in place, or appends the preset when its id is new; then writes.
    void save(const Preset &preset);
    /// Removes every preset with the given preset's id (none is no error); then writes.
    void deletePreset(const Preset &preset);

    /// The path of the presets file.
    QString storagePath() const;

Q_SIGNALS:
    /// Fires once after each change of the list (and after the attempt to write it), never for an operation
    /// that leaves the list as it was.
    void presetsChanged();

private:
    /// Reads the file into the list. Returns false when the file holds something that must not be overwritten:
    /// data that could neither be read nor kept as a backup.
    [[nodiscard]] bool load();
    /// Keeps the bytes of an undecodable file beside it; false when that failed.
    [[nodiscard]] bool keepBackup(const QByteArray &bytes) const;
    /// Only during construction, before anyone can observe the list, so it does not signal.
    void loadBuiltIn(bool mayOverwriteFile);
    void replacePresets(QList<Preset> presets);
    void persist() const;

    QList<Preset> m_presets;
    QString m_storagePath;
};

} // namespace quillfern
