// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QDBusConnection>
#include <QString>
#include <QVariantList>

namespace quenthisar::e2e {

/// Asks the virtual dongle on a bus for faults (see dongle/README.md). One at a time.
class Faults {
public:
    explicit Faults(const QString& busAddress);
    ~Faults();
    Faults(const Faults&) = delete;
    Faults& operator=(const Faults&) = delete;

    /// Returns when it has been done. False if the virtual dongle refuses.
    bool ask(const QString& method, const QVariantList& arguments = {});

private:
    int argumentCount = 1;
    char name[7] = "faults";
    char* list[2] = {name, nullptr};
    QCoreApplication application{argumentCount, list}; // which QtDBus wants
    QDBusConnection bus;
};

} // namespace quenthisar::e2e
