// SPDX-License-Identifier: MIT
#pragma once

#include "Agents.h"
#include "Dongle.h"
#include "ObjectTree.h"
#include "PayloadReader.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>

namespace quenthisar::dongle {

/// The input characteristic as the daemon offers it (GattCharacteristic1). Main thread.
class Characteristic final : public QObject {
public:
    /// What it asks of the device that it belongs to. Called from the main loop only.
    struct Owner {
        QString adapter; // path
        QString path;
        std::function<void(const QString& reason)> dropLink;
        std::function<void()> vanish; // its objects go without a word
        std::function<void()> setPaired;
    };

    Characteristic(ObjectTree& tree, Agents& agents, Dongle& dongle, QString path, Owner owner);
    /// Closes the descriptor; a request under way is never answered.
    ~Characteristic() override;

    /// Its properties, for a link that is new.
    static QVariantMap properties(const QString& service);

    bool call(const QDBusMessage& message, bool connected);
    /// Takes what is still in the descriptor; for a link that the host ends.
    void drain();
    /// Closes the descriptor and fails a request that is under way.
    void linkLost();
    void setReading(bool reading);
    void closeDescriptor();

private:
    void writeValue(const QDBusMessage& call);
    void request(const QByteArray& value);
    void pairFirst(const QByteArray& value);
    void answerRequest(const QString& error = {}, const QString& text = {});
    void acquireWrite(const QDBusMessage& call);
    void closeLater(int number);

    ObjectTree& tree;
    Agents& agents;
    Dongle& dongle;
    QString path;
    Owner owner;
    std::optional<QDBusMessage> pending;   // the write request under way
    int requests = 0;                      // counts them, so that a late timer finds another
    int descriptors = 0;                   // counts them, for the same reason
    std::unique_ptr<PayloadReader> reader; // of the one that was handed out
};

} // namespace quenthisar::dongle
