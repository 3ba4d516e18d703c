// SPDX-License-Identifier: MIT
#include "Linux/AutostartItem.h"

#include "Linux/ConfigFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace quenthisar {

namespace {

/// `text` as the argument of an Exec key: quoted, with what is special there and, once more, in a
/// value escaped.
QString execArgument(const QString& text) {
    QString quoted;
    for (const QChar c : text) {
        if (QStringLiteral("\"`$\\").contains(c)) quoted += QStringLiteral("\\\\");
        if (c == u'\\') quoted += u'\\';
        if (c == u'%') quoted += u'%';
        quoted += c;
    }
    return u'"' + quoted + u'"';
}

/// `text` as a value.
QString escaped(QString text) {
    return text.replace(u'\\', QStringLiteral("\\\\"));
}

constexpr qint64 lineLimit = 65'536; // of what is read at once; no entry has such lines

/// Whether the desktop entry is switched off.
bool isHidden(QFile& entry) {
    bool inMainGroup = false, hidden = false;
    while (!entry.atEnd()) {
        const QByteArray line = entry.readLine(lineLimit).trimmed();
        if (line.startsWith('[')) inMainGroup = line == "[Desktop Entry]";
        const auto equals = line.indexOf('=');
        if (inMainGroup && equals > 0 && line.left(equals).trimmed() == "Hidden")
            hidden = line.mid(equals + 1).trimmed() == "true";
    }
    return hidden;
}

} // namespace

QString AutostartItem::standardPath() {
    return configFolder() + QStringLiteral("/autostart/com.vornack.quenthisar.desktop");
}

AutostartItem::AutostartItem(QString entry, QString executable)
    : path(std::move(entry)), program(std::move(executable)) {}

LoginItemStatus AutostartItem::status() {
    const QFileInfo information(path);
    if (!information.exists()) return LoginItemStatus::notRegistered;
    // Opening a pipe would wait for somebody to write.
    QFile entry(path);
    if (!information.isFile() || !entry.open(QIODevice::ReadOnly)) return LoginItemStatus::notFound;
    return isHidden(entry) ? LoginItemStatus::requiresApproval : LoginItemStatus::enabled;
}

std::optional<std::string> AutostartItem::registerItem() {
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder)) return "cannot create " + folder.toStdString();
    QSaveFile entry(path);
    const auto text = QStringLiteral("[Desktop Entry]\n"
                                     "Type=Application\n"
                                     "Name=Quenthisar\n"
                                     "TryExec=%1\n"
                                     "Exec=%2\n"
                                     "Icon=com.vornack.quenthisar\n")
                          .arg(escaped(program), execArgument(program))
                          .toUtf8();
    if (!entry.open(QIODevice::WriteOnly)) return entry.errorString().toStdString();
    // A disk that is nearly full takes a part, and `commit` calls that no error.
    if (entry.write(text) != text.size() || !entry.flush())
        return "cannot write all of " + path.toStdString();
    if (!entry.commit()) return entry.errorString().toStdString();
    return std::nullopt;
}

std::optional<std::string> AutostartItem::unregisterItem() {
    QFile entry(path);
    if (!entry.remove()) return entry.errorString().toStdString();
    return std::nullopt;
}

} // namespace quenthisar
