// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QPoint>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

namespace quenthisar::e2e {

/// One element of a program's windows as assistive technology sees it. Copyable; outlives neither
/// the program nor the `AccessibleDesktop` it comes from.
class Accessible {
public:
    /// How the accessibility bus refers to an element.
    struct Reference {
        QString service;
        QDBusObjectPath path;
    };

    Accessible(QDBusConnection connection, Reference element)
        : bus(std::move(connection)), reference(std::move(element)) {}

    QString name() const { return property("Accessible", "Name").toString(); }
    QString description() const { return property("Accessible", "Description").toString(); }
    QString role() const; // such as "push button"
    QString text() const;
    double value() const { return property("Value", "CurrentValue").toDouble(); }
    bool isChecked() const { return hasState(4); }
    bool isExpanded() const { return hasState(10); }
    bool isFocused() const { return hasState(12); }
    bool isShowing() const { return hasState(25); }
    QList<Accessible> children() const;
    /// On the screen, in pixels; null where nothing is shown.
    QPoint center() const;

    /// The first element below this one, or this one, that is wanted.
    std::optional<Accessible> find(const std::function<bool(const Accessible&)>& wanted) const;
    /// Everything, a line each, for the message of a failed test.
    QString tree(int depth = 0) const;

private:
    bool hasState(unsigned number) const;
    QVariant call(const char* interface, const char* method,
                  const QVariantList& arguments = {}) const;
    QVariant property(const char* interface, const char* name) const;

    QDBusConnection bus;
    Reference reference;
};

/// The accessibility bus of a session, with the programs on it.
class AccessibleDesktop {
public:
    /// Throws std::runtime_error if there is none.
    explicit AccessibleDesktop(const QString& sessionBusAddress);
    ~AccessibleDesktop();
    AccessibleDesktop(const AccessibleDesktop&) = delete;
    AccessibleDesktop& operator=(const AccessibleDesktop&) = delete;

    /// The element of this role and name or description that a program shows, or none after
    /// `limit`.
    std::optional<Accessible> element(const QString& role, const QString& name,
                                      std::chrono::milliseconds limit) const;
    /// What is there, for the message of a failed test.
    QString tree() const { return registry().tree(); }

private:
    /// The parent of all programs.
    Accessible registry() const;

    QString name;
    QDBusConnection bus;
};

} // namespace quenthisar::e2e
