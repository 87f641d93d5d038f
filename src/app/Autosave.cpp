#include "app/Autosave.h"

#include "document/MyDocument.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>
#include <QSettings>

#include <algorithm>

namespace
{
constexpr int kDefaultSeconds = 30;

QString descriptionPath(const QString& copyPath)
{
    return copyPath + QStringLiteral(".ini");
}

// The workbench a copy belongs to: its name up to the last '-'.
QString instanceOf(const QString& copyPath)
{
    const QString base = QFileInfo(copyPath).completeBaseName();
    return base.left(base.lastIndexOf(QLatin1Char('-')));
}

std::unique_ptr<QLockFile> lockOf(const QString& folder, const QString& instance)
{
    auto lock = std::make_unique<QLockFile>(folder + QLatin1Char('/') + instance + QStringLiteral(".lock"));
    // Only a workbench that has ended gives its lock up; age alone never does.
    lock->setStaleLockTime(0);
    return lock;
}
} // namespace

Autosave::Autosave()
    : m_strFolder(defaultFolder()), m_strInstance(QStringLiteral("%1.%2")
                                                      .arg(QCoreApplication::applicationPid())
                                                      .arg(QDateTime::currentMSecsSinceEpoch()))
{
    if (!QDir().mkpath(m_strFolder))
        return;
    m_pLock = lockOf(m_strFolder, m_strInstance);
    m_bUsable = m_pLock->tryLock(0);
}

Autosave::~Autosave() = default;

QString Autosave::defaultFolder()
{
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (state.isEmpty() || !QDir::isAbsolutePath(state))
        state = QDir::homePath() + QStringLiteral("/.local/state");
    return state + QStringLiteral("/tessaphon/autosave");
}

int Autosave::intervalSeconds()
{
    bool ok = false;
    const int seconds = qEnvironmentVariable("TESSAPHON_AUTOSAVE_SECONDS").toInt(&ok);
    return ok && seconds >= 1 ? seconds : kDefaultSeconds;
}

QString Autosave::newCopyPath()
{
    return QStringLiteral("%1/%2-%3.stk").arg(m_strFolder, m_strInstance).arg(++m_nCopies);
}

bool Autosave::write(const Entry& entry, MyDocument& doc, QString* error) const
{
    if (!m_bUsable) {
        if (error)
            *error = QStringLiteral("no autosave folder");
        return false;
    }
    {
        QSettings description(descriptionPath(entry.copyPath), QSettings::IniFormat);
        description.setValue(QStringLiteral("original"), entry.originalPath);
        description.setValue(QStringLiteral("name"), entry.name);
        description.setValue(QStringLiteral("model"), entry.modelPath);
        description.setValue(QStringLiteral("nameProposed"), entry.nameProposed);
        description.sync();
        if (description.status() != QSettings::NoError) {
            if (error)
                *error = QStringLiteral("cannot write %1").arg(descriptionPath(entry.copyPath));
            return false;
        }
    }
    // Every row, shown or not: the copy must bring back everything the table holds.
    const std::string text = doc.parameterDocumentText(true);
    QSaveFile file(entry.copyPath);
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(text.data(), static_cast<qint64>(text.size())) != static_cast<qint64>(text.size()) ||
        !file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}

void Autosave::remove(const QString& copyPath)
{
    if (copyPath.isEmpty())
        return;
    QFile::remove(copyPath);
    QFile::remove(descriptionPath(copyPath));
}

QList<Autosave::Entry> Autosave::leftBehind()
{
    QList<Entry> entries;
    if (!m_bUsable)
        return entries;
    const QFileInfoList copies =
        QDir(m_strFolder).entryInfoList({QStringLiteral("*.stk")}, QDir::Files, QDir::Time);
    for (const QFileInfo& copy : copies) {
        const QString instance = instanceOf(copy.filePath());
        if (instance.isEmpty() || instance == m_strInstance)
            continue;
        const bool claimed = std::any_of(m_claimed.begin(), m_claimed.end(), [&](const auto& lock) {
            return QFileInfo(lock->fileName()).completeBaseName() == instance;
        });
        if (!claimed) {
            auto lock = lockOf(m_strFolder, instance);
            if (!lock->tryLock(0))
                continue; // that workbench is still running
            m_claimed.push_back(std::move(lock));
        }
        const QSettings description(descriptionPath(copy.filePath()), QSettings::IniFormat);
        Entry entry;
        entry.copyPath = copy.filePath();
        entry.originalPath = description.value(QStringLiteral("original")).toString();
        entry.name = description.value(QStringLiteral("name")).toString();
        entry.modelPath = description.value(QStringLiteral("model")).toString();
        entry.nameProposed = description.value(QStringLiteral("nameProposed")).toBool();
        entry.savedAt = copy.lastModified();
        if (entry.name.isEmpty())
            entry.name =
                entry.originalPath.isEmpty() ? copy.fileName() : QFileInfo(entry.originalPath).fileName();
        entries.append(entry);
    }
    // Locks of ended workbenches that left no copy are clutter: cleared.
    for (const QFileInfo& lockFile :
         QDir(m_strFolder).entryInfoList({QStringLiteral("*.lock")}, QDir::Files)) {
        const QString instance = lockFile.completeBaseName();
        const bool hasCopies = std::any_of(copies.begin(), copies.end(), [&](const QFileInfo& copy) {
            return instanceOf(copy.filePath()) == instance;
        });
        if (instance == m_strInstance || hasCopies)
            continue;
        auto lock = lockOf(m_strFolder, instance);
        if (lock->tryLock(0))
            lock->unlock();
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.savedAt < b.savedAt; });
    return entries;
}
