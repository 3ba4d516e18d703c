// SPDX-License-Identifier: MIT
#include "Linux/StatusNotifierItem.h"

#include <QDBusMetaType>
#include <QtEndian>

#include <utility>

namespace quenthisar {

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.argb;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.iconPixmap << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.argb;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.iconPixmap >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

StatusNotifierItem::StatusNotifierItem(std::function<void()> open) : openMenu(std::move(open)) {
    qDBusRegisterMetaType<StatusNotifierPixmap>();
    qDBusRegisterMetaType<QList<StatusNotifierPixmap>>();
    qDBusRegisterMetaType<StatusNotifierToolTip>();
}

void StatusNotifierItem::setImage(Draw next, const QString& accessibleName) {
    description = accessibleName;
    draw = std::move(next);
    pixmaps.clear();
    Q_EMIT NewTitle();
    Q_EMIT NewIcon();
    Q_EMIT NewToolTip();
}

QList<StatusNotifierPixmap> StatusNotifierItem::iconPixmap() {
    if (!draw) return pixmaps;
    for (const auto& image : std::exchange(draw, {})()) {
        const auto pixels = image.convertToFormat(QImage::Format_ARGB32);
        QByteArray argb(pixels.sizeInBytes(), Qt::Uninitialized);
        qToBigEndian<quint32>(pixels.constBits(), pixels.sizeInBytes() / 4, argb.data());
        pixmaps.append({pixels.width(), pixels.height(), argb});
    }
    return pixmaps;
}

/// After the host has its answer: it may hold the mouse until then.
void StatusNotifierItem::open() {
    QMetaObject::invokeMethod(this, openMenu, Qt::QueuedConnection);
}

} // namespace quenthisar
