// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace quenthisar {

/// An item as a panel reads it.
struct PanelItem {
    int id = 0;
    QVariantMap properties;
    std::vector<PanelItem> children;

    QString label() const { return properties.value(QStringLiteral("label")).toString(); }
    bool isEnabled() const { return properties.value(QStringLiteral("enabled"), true).toBool(); }
    /// 1 and 0 for on and off; -1 for an item that has no mark.
    int mark() const { return properties.value(QStringLiteral("toggle-state"), -1).toInt(); }
    /// The child with this label; an empty one if there is none.
    PanelItem operator[](const QString& label) const;
};

/// A desktop's panel on a bus: it keeps the list of status items, shows them, and reads their menus
/// as some panels do, without opening them. The protocol is decoded here on its own. Needs an
/// application object.
class StatusPanel final : public QDBusVirtualObject {
    Q_OBJECT

public:
    explicit StatusPanel(const QString& busAddress);
    ~StatusPanel() override;

    bool waitForItem() const;

    // Of the item that came first; none and empty if it does not answer.

    QVariant itemProperty(const QString& name);
    /// The whole menu, or of one submenu.
    PanelItem menu(int parent = 0);
    /// Whether its menu gets to be so; it is read again whenever the item says that it changed.
    bool waitForMenu(const std::function<bool(const PanelItem&)>& wanted);
    void click(int id);
    std::optional<QDBusMessage> call(const QString& path, const QString& interface,
                                     const QString& method, const QVariantList& arguments);

    QStringList items; // in the order in which they came

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override;

private:
    Q_SLOT void menuHasChanged() { isStale = true; }

    QDBusConnection bus;
    bool isStale = true;
    PanelItem shown;
};

} // namespace quenthisar
