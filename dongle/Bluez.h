// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The daemon's vocabulary.
namespace quenthisar::dongle::bluez {

inline const QString adapter = QStringLiteral("org.bluez.Adapter1");
inline const QString device = QStringLiteral("org.bluez.Device1");
inline const QString service = QStringLiteral("org.bluez.GattService1");
inline const QString characteristic = QStringLiteral("org.bluez.GattCharacteristic1");
inline const QString agentManager = QStringLiteral("org.bluez.AgentManager1");
inline const QString agent = QStringLiteral("org.bluez.Agent1");
inline const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

inline const QString failed = QStringLiteral("org.bluez.Error.Failed");
inline const QString inProgress = QStringLiteral("org.bluez.Error.InProgress");
inline const QString notReady = QStringLiteral("org.bluez.Error.NotReady");
inline const QString notPermitted = QStringLiteral("org.bluez.Error.NotPermitted");
inline const QString notSupported = QStringLiteral("org.bluez.Error.NotSupported");
inline const QString doesNotExist = QStringLiteral("org.bluez.Error.DoesNotExist");
inline const QString blocked = QStringLiteral("org.bluez.Error.Blocked");
inline const QString alreadyExists = QStringLiteral("org.bluez.Error.AlreadyExists");

inline const QString dongleService = QStringLiteral("f1e00000-64f2-4b5d-9c51-3e2a5d0d8b10");
inline const QString inputCharacteristic = QStringLiteral("f1e00001-64f2-4b5d-9c51-3e2a5d0d8b10");
inline const QString gapService = QStringLiteral("00001800-0000-1000-8000-00805f9b34fb");
inline const QString gattService = QStringLiteral("00001801-0000-1000-8000-00805f9b34fb");

} // namespace quenthisar::dongle::bluez
