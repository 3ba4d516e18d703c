// SPDX-License-Identifier: MIT
// The central over a Bluetooth daemon that says what it likes: objects that come and go in any
// order, with properties of any name and type, and answers to what is asked of it.
#include "Linux/BluezCentral.h"

#include "BluezInMemory.h"
#include "Loop.h"
#include "Target.h"

#include <QDBusArgument>
#include <QDBusVariant>

#include <array>
#include <map>
#include <set>

namespace quenthisar {

namespace {

using namespace Qt::StringLiterals;
using fuzz::BluezInMemory;
using fuzz::Reader;
using fuzz::require;

constexpr Uuid ourService{
    {0xF1, 0xE0, 0, 0, 0x64, 0xF2, 0x4B, 0x5D, 0x9C, 0x51, 0x3E, 0x2A, 0x5D, 0x0D, 0x8B, 0x10}};

/// What the input consists of: words of the daemon's language, and any others.
class Words {
public:
    explicit Words(Reader& input) : reader(input) {}

    QString text() { return QString::fromStdString(reader.text()); }

    QString path() {
        static const std::array paths{u"/org/bluez/hci0"_s,
                                      u"/org/bluez/hci1"_s,
                                      u"/org/bluez/hci0/dev_1"_s,
                                      u"/org/bluez/hci0/dev_2"_s,
                                      u"/org/bluez/hci1/dev_1"_s,
                                      u"/org/bluez/hci0/dev_1/service1"_s,
                                      u"/org/bluez/hci0/dev_1/service1/char2"_s,
                                      u"/"_s};
        return reader.oneOf(paths);
    }
    QString interface() {
        static const std::array names{QString(Bluez::adapter), QString(Bluez::device),
                                      QString(Bluez::gattService),
                                      QString(Bluez::gattCharacteristic), u"org.bluez.Battery1"_s};
        return reader.oneOf(names);
    }
    QString property() {
        static const std::array names{
            u"Address"_s,   u"Name"_s,    u"Alias"_s,           u"UUIDs"_s,       u"Adapter"_s,
            u"Connected"_s, u"RSSI"_s,    u"Powered"_s,         u"Discovering"_s, u"UUID"_s,
            u"Device"_s,    u"Service"_s, u"ServicesResolved"_s};
        return reader.oneOf(names);
    }
    /// As Qt reads it from the bus.
    QVariant value() {
        static const auto service = QString::fromStdString(ourService.text());
        static const std::array addresses{u"C0:00:00:00:00:01"_s, u"c0:00:00:00:00:02"_s};
        switch (reader.number(18)) {
        case 0: return false;
        case 1: return true;
        case 2: return reader.oneOf(addresses);
        case 3: return service;
        case 4: return QStringList{u"180f"_s, service};
        case 5: return QVariant::fromValue(QDBusObjectPath(path()));
        case 6: return text();
        case 7: return QVariant::fromValue(static_cast<short>(-50));
        case 8: return QVariant::fromValue(QDBusObjectPath(text()));
        case 9: return QStringList{text(), text()};
        case 10: return text().toUtf8();
        case 11: return QVariant::fromValue(QDBusVariant(reader.flag()));
        case 12: return QVariant::fromValue(QDBusArgument());
        case 13: return static_cast<double>(reader.byte());
        case 14: return static_cast<qulonglong>(reader.byte());
        case 15: return QVariant::fromValue(reader.byte());
        case 16: return QVariantMap{{text(), text()}};
        case 17: return QString();
        default: return {};
        }
    }
    QVariantMap properties() {
        QVariantMap result;
        for (auto count = reader.number(7); count > 0; --count) {
            const auto name = property();
            result.insert(name, value());
        }
        return result;
    }
    BluezInterfaces interfaces() {
        BluezInterfaces result;
        for (auto count = reader.number(3); count > 0; --count) {
            const auto name = interface();
            result.insert(name, properties());
        }
        return result;
    }
    BluezObjects objects() {
        BluezObjects result;
        for (auto count = reader.number(8); count > 0; --count) {
            const QDBusObjectPath object(path());
            result.insert(object, interfaces());
        }
        return result;
    }
    QStringList interfaceNames() {
        QStringList names;
        for (auto count = reader.number(3); count > 0; --count) names += interface();
        return names;
    }
    QStringList propertyNames() {
        QStringList names;
        for (auto count = reader.number(3); count > 0; --count) names += property();
        return names;
    }
    QDBusMessage answer() {
        static const std::array errors{
            u"org.bluez.Error.Failed"_s, u"org.bluez.Error.AlreadyConnected"_s,
            u"org.bluez.Error.InProgress"_s, u"org.bluez.Error.NotPermitted"_s};
        const auto call = QDBusMessage::createMethodCall(u"org.bluez"_s, u"/"_s, {}, u"Any"_s);
        return reader.flag() ? call.createErrorReply(reader.oneOf(errors), u"no"_s)
                             : call.createReply();
    }

private:
    Reader& reader;
};

/// Uses the central as an input says, and checks what it reports.
class User final : public CentralDelegate, public PeripheralDelegate {
public:
    explicit User(BluezCentral& theCentral) : central(theCentral) {
        central.setDelegate(this);
        central.onLinks([this](const QStringList& paths) {
            links = paths;
            require(std::ranges::adjacent_find(paths, std::greater_equal<>{}) == paths.end(),
                    "a link twice");
        });
    }
    ~User() { central.setDelegate(nullptr); }

    void act(Reader& reader) {
        if (known.empty()) return central.scanForPeripherals(ourService);
        const auto peripheral = known.at(reader.number(known.size()));
        switch (reader.number(6)) {
        case 0: return central.scanForPeripherals(ourService);
        case 1: {
            if (peripheral->state() == PeripheralState::disconnected)
                attempts.insert(peripheral.get());
            return central.connect(peripheral);
        }
        case 2: return central.cancelConnection(peripheral);
        case 3: return peripheral->discoverServices(ourService);
        case 4:
            if (!peripheral->services().empty())
                peripheral->discoverCharacteristics(ourService, peripheral->services().front());
            return;
        case 5:
            return write(*peripheral,
                         reader.flag() ? WriteType::withResponse : WriteType::withoutResponse);
        default: return;
        }
    }

    void didUpdateState() override {
        require(central.state() != CentralState::unknown || known.empty(), "forgets its state");
        if (central.state() == CentralState::poweredOn) central.scanForPeripherals(ourService);
    }
    void didDiscover(const PeripheralPtr& peripheral, const Advertisement& news) override {
        require(peripheral != nullptr, "discovers nothing");
        require(news.localName != "", "tells an empty name");
        require(central.state() == CentralState::poweredOn, "discovers without power");
        require(peripheral->state() != PeripheralState::connecting, "discovers in an attempt");
        const auto id = peripheral->identifier();
        require(id.bytes[6] >> 4 == 5, "no version 5 identifier");
        const auto [entry, isNew] = byId.emplace(id, peripheral);
        require(entry->second == peripheral, "two objects for one identifier");
        if (!isNew) return;
        peripheral->setDelegate(this);
        known.push_back(peripheral);
        require(known.size() <= 64, "no end of dongles");
    }
    void didConnect(const PeripheralPtr& peripheral) override {
        require(peripheral->state() == PeripheralState::connected, "is not connected");
        require(attempts.erase(peripheral.get()) == 1, "connects without being asked");
        require(linked.insert(peripheral.get()).second, "connects twice");
    }
    void didFailToConnect(const PeripheralPtr& peripheral, const CentralError& error) override {
        require(error.has_value(), "fails for no reason");
        require(attempts.erase(peripheral.get()) == 1, "fails without being asked");
        require(peripheral->state() == PeripheralState::disconnected, "fails, but is there");
    }
    void didDisconnect(const PeripheralPtr& peripheral, const CentralError& /*error*/) override {
        require(linked.erase(peripheral.get()) + attempts.erase(peripheral.get()) == 1,
                "ends a link that was none");
        require(peripheral->state() == PeripheralState::disconnected, "ends, but is there");
        require(peripheral->services().empty(), "keeps services without a link");
        require(owed[peripheral.get()] == 0, "owes an answer when the link is gone");
    }
    void didDiscoverServices(Peripheral& peripheral, const CentralError& /*error*/) override {
        require(linked.contains(&peripheral), "services without a link");
        for (const auto& service : peripheral.services())
            require(service.uuid == ourService && !service.handle.empty(), "another service");
    }
    void didDiscoverCharacteristics(Peripheral& peripheral, const Service& service,
                                    const CentralError& /*error*/) override {
        require(linked.contains(&peripheral), "characteristics without a link");
        for (const auto& item : service.characteristics)
            require(item.uuid == ourService, "another characteristic");
    }
    void didWriteValue(Peripheral& peripheral, const Characteristic& /*characteristic*/,
                       const CentralError& /*error*/) override {
        require(owed[&peripheral]-- > 0, "answers what nobody wrote");
    }

private:
    void write(Peripheral& peripheral, WriteType type) {
        if (type == WriteType::withResponse) ++owed[&peripheral];
        peripheral.writeValue({2}, {ourService, "/org/bluez/hci0/dev_1/service1/char2"}, type);
    }

    BluezCentral& central;
    QStringList links;
    std::vector<PeripheralPtr> known;
    std::map<Uuid, PeripheralPtr> byId;
    std::set<const Peripheral*> attempts, linked;
    std::map<const Peripheral*, int> owed;
};

void answerOne(Reader& reader, Words& words) {
    auto& questions = BluezInMemory::current().questions;
    if (questions.empty()) return;
    const auto place = static_cast<std::ptrdiff_t>(reader.number(questions.size()));
    const auto question = questions.at(static_cast<std::size_t>(place));
    questions.erase(questions.begin() + place);
    question.answer(words.answer());
}

void tell(Reader& reader, Words& words) {
    using Presence = BluezDaemon::Presence;
    auto& daemon = BluezInMemory::current();
    const auto path = words.path();
    switch (reader.number(6)) {
    case 0: return daemon.picture->added(path, words.interfaces());
    case 1: return daemon.picture->removed(path, words.interfaceNames());
    case 2:
    case 3: {
        const auto interface = words.interface();
        const auto properties = words.properties();
        return daemon.picture->changed(path, interface, properties, words.propertyNames());
    }
    case 4: daemon.objects = words.objects(); return;
    case 5: {
        constexpr std::array ends{Presence::gone, Presence::denied};
        daemon.forget(reader.oneOf(ends));
        daemon.follow(u":1.7"_s);
        return daemon.read(words.objects());
    }
    default: return;
    }
}

} // namespace

void fuzz::run(Bytes input) {
    runQueued(); // there is no loop before
    Reader reader(input);
    Words words(reader);
    BluezCentral central{QDBusConnection(u"none"_s)};
    User user(central);
    runQueued();
    auto& daemon = BluezInMemory::current();
    daemon.follow(u":1.1"_s);
    daemon.objects = words.objects();
    daemon.read(daemon.objects);
    while (!reader.atEnd()) {
        switch (reader.number(3)) {
        case 0: tell(reader, words); break;
        case 1: answerOne(reader, words); break;
        case 2: user.act(reader); break;
        default: break;
        }
        runQueued();
    }
    central.drain(std::chrono::milliseconds{0});
}

} // namespace quenthisar
