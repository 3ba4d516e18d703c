// SPDX-License-Identifier: MIT
// Stands in for src/Linux/BluezDaemon.cpp: the same class without a bus.
#include "BluezInMemory.h"

namespace quenthisar {

fuzz::BluezInMemory& fuzz::BluezInMemory::current() {
    static BluezInMemory one;
    return one;
}

BluezDaemon::BluezDaemon(const Bus& bus, BluezFollower& theFollower)
    : follower(theFollower), picture(theFollower), lastingBus(
                                                       bus, [] {}, [] {}) {
    auto& stage = fuzz::BluezInMemory::current();
    stage = {};
    stage.picture = &picture;
    stage.follow = [this](const QString& next) { follow(next); };
    stage.forget = [this](Presence next) { forget(next); };
    stage.read = [this](const BluezObjects& objects) {
        picture.read(objects);
        currentPresence = Presence::present;
        follower.presenceChanged();
    };
}

void BluezDaemon::follow(const QString& nextOwner) {
    owner = nextOwner;
    currentPresence = Presence::reading;
    follower.presenceChanged();
}

void BluezDaemon::forget(Presence next) {
    owner.clear();
    currentPresence = next;
    picture.clear();
    follower.presenceChanged();
}

void BluezDaemon::call(const QString& /*path*/, const QString& /*interface*/, const QString& method,
                       const QVariantList& /*arguments*/, Limit /*limit*/, Answer answer) {
    fuzz::BluezInMemory::current().questions.push_back({method, std::move(answer)});
}

void BluezDaemon::readObjects(
    std::function<void(const BluezObjects&, const QDBusMessage&)> answer) {
    call({}, {}, QStringLiteral("GetManagedObjects"), {}, Limit::usual,
         [answer = std::move(answer)](const QDBusMessage& reply) {
             const bool isError = reply.type() == QDBusMessage::ErrorMessage;
             answer(isError ? BluezObjects{} : fuzz::BluezInMemory::current().objects, reply);
         });
}

bool BluezDaemon::isFromDaemon(const QDBusMessage& message) const {
    return !owner.isEmpty() && message.service() == owner;
}

// No bus brings these.
void BluezDaemon::nameOwnerChanged(const QDBusMessage& /*signal*/) {}
void BluezDaemon::interfacesAdded(const QDBusMessage& /*signal*/) {}
void BluezDaemon::interfacesRemoved(const QDBusMessage& /*signal*/) {}
void BluezDaemon::propertiesChanged(const QDBusMessage& /*signal*/) {}

} // namespace quenthisar
