// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QImage>
#include <QList>
#include <QObject>
#include <QString>

#include <functional>

namespace quenthisar {

// What the interface sends, in the order of the bus.

struct StatusNotifierPixmap { // (iiay)
    int width = 0, height = 0;
    QByteArray argb; // four bytes a pixel, not premultiplied, the most significant one first
};
struct StatusNotifierToolTip { // (sa(iiay)ss)
    QString iconName{};
    QList<StatusNotifierPixmap> iconPixmap{};
    QString title{}, text{};
};

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);

/// The item that the desktop's panel reads over the bus (org.kde.StatusNotifierItem). It is nothing
/// but its menu. Main thread.
class StatusNotifierItem final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(int WindowId READ windowId CONSTANT)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)
    Q_PROPERTY(QString IconName READ noName CONSTANT)
    Q_PROPERTY(QString IconThemePath READ noName CONSTANT)
    Q_PROPERTY(QList<quenthisar::StatusNotifierPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString IconAccessibleDesc READ title)
    Q_PROPERTY(QString OverlayIconName READ noName CONSTANT)
    Q_PROPERTY(QList<quenthisar::StatusNotifierPixmap> OverlayIconPixmap READ noPixmap CONSTANT)
    Q_PROPERTY(QString AttentionIconName READ noName CONSTANT)
    Q_PROPERTY(QList<quenthisar::StatusNotifierPixmap> AttentionIconPixmap READ noPixmap CONSTANT)
    Q_PROPERTY(QString AttentionMovieName READ noName CONSTANT)
    Q_PROPERTY(quenthisar::StatusNotifierToolTip ToolTip READ toolTip)

public:
    static constexpr QLatin1String path{"/StatusNotifierItem"};
    static constexpr QLatin1String menuPath{"/MenuBar"};

    /// `openMenu` is for hosts that leave it to the item to show its menu.
    explicit StatusNotifierItem(std::function<void()> openMenu);

    /// Draws the image in several sizes; none for no image.
    using Draw = std::function<QList<QImage>()>;

    /// `draw` is called once, when a host asks for the image.
    void setImage(Draw draw, const QString& description);

    // The interface.

    static QString category() { return QStringLiteral("ApplicationStatus"); }
    static QString id() { return QStringLiteral("quenthisar"); }
    static QString status() { return QStringLiteral("Active"); }
    static int windowId() { return 0; }
    static bool itemIsMenu() { return true; }
    static QDBusObjectPath menu() { return QDBusObjectPath(menuPath); }
    static QString noName() { return {}; }
    static QList<StatusNotifierPixmap> noPixmap() { return {}; }
    QString title() const { return description; }
    QList<StatusNotifierPixmap> iconPixmap();
    StatusNotifierToolTip toolTip() const { return {.title = description}; }

    Q_SLOT void ContextMenu(int /*x*/, int /*y*/) { open(); }
    Q_SLOT void Activate(int /*x*/, int /*y*/) { open(); }
    Q_SLOT void SecondaryActivate(int /*x*/, int /*y*/) {}
    Q_SLOT void Scroll(int /*delta*/, const QString& /*orientation*/) {}

    Q_SIGNAL void NewTitle();
    Q_SIGNAL void NewIcon();
    Q_SIGNAL void NewToolTip();

private:
    void open();

    std::function<void()> openMenu;
    QString description;
    Draw draw; // none once it was called
    QList<StatusNotifierPixmap> pixmaps;
};

} // namespace quenthisar
