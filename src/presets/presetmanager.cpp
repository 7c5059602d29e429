#include "presets/presetmanager.h"

#include "presets/builtinpresets.h"
#include "presets/presetfile.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>

namespace quillfern {

using namespace Qt::StringLiterals;

namespace {

/// Creates the presets folder (an error, such as that it exists, is ignored) and returns the file's path.
QString makeStoragePath()
{
    const QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (dataHome.isEmpty())
        qFatal("PresetManager: the system names no data folder for the user, so presets have nowhere to live.");
    const QString folder = dataHome + u"/Quillfern/Presets"_s;
    QDir().mkpath(folder);
    return folder + u"/presets.json"_s;
}

/// Writes the whole file under a temporary name in the same folder and renames it into place, so a crash can
/// never leave a truncated file behind.
bool writeAtomically(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

} // namespace

PresetManager::PresetManager(QObject *parent)
    : QObject(parent)
    , m_storagePath(makeStoragePath())
{
    const bool mayOverwriteFile = load();
    if (m_presets.isEmpty())
        loadBuiltIn(mayOverwriteFile);
}

const QList<Preset> &PresetManager::presets() const
{
    return m_presets;
}

QString PresetManager::storagePath() const
{
    return m_storagePath;
}

void PresetManager::save(const Preset &preset)
{
    QList<Preset> updated = m_presets;
    const auto existing = std::find_if(updated.begin(), updated.end(), [&](const Preset &candidate) {
        return candidate.id == preset.id;
    });
    if (existing == updated.end())
        updated.append(preset);
    else
        *existing = preset;
    replacePresets(std::move(updated));
}

void PresetManager::deletePreset(const Preset &preset)
{
    QList<Preset> updated = m_presets;
    updated.removeIf([&](const Preset &candidate) { return candidate.id == preset.id; });
    replacePresets(std::move(updated));
}

bool PresetManager::load()
{
    QFile file(m_storagePath);
    if (!file.exists())
        return true;
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    DecodeResult<QList<Preset>> decoded = presetfile::decode(bytes);
    if (!decoded.isSuccess())
        return keepBackup(bytes);
    m_presets = std::move(decoded).value();
    return true;
}

bool PresetManager::keepBackup(const QByteArray &bytes) const
{
    return writeAtomically(m_storagePath + u".bak"_s, bytes);
}

void PresetManager::loadBuiltIn(bool mayOverwriteFile)
{
    m_presets = builtInPresets();
    if (mayOverwriteFile)
        persist();
}

void PresetManager::replacePresets(QList<Preset> presets)
{
    const bool isChanged = presets != m_presets;
    m_presets = std::move(presets);
    persist();
    if (isChanged)
        Q_EMIT presetsChanged();
}

void PresetManager::persist() const
{
    // A failed write leaves the list in memory as it is; the next change tries again.
    writeAtomically(m_storagePath, presetfile::encode(m_presets));
}

} // namespace quillfern
