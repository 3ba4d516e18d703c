// SPDX-License-Identifier: MIT
#include "linux/BluezStage.h"

#include <gtest/gtest.h>

#include <QDBusMessage>

#include <algorithm>
#include <iterator>
#include <map>
#include <stdexcept>

namespace quenthisar {

using namespace std::chrono_literals;

namespace {

const auto serviceId = *Uuid::parse("F1E00000-64F2-4B5D-9C51-3E2A5D0D8B10");
const auto inputId = *Uuid::parse("F1E00001-64F2-4B5D-9C51-3E2A5D0D8B10");

class QtEnvironment final : public testing::Environment {
public:
    void SetUp() override { application = std::make_unique<QCoreApplication>(argumentCount, list); }
    void TearDown() override { application.reset(); }

private:
    int argumentCount = 1;
    char name[6] = "tests";
    char* list[2] = {name, nullptr};
    std::unique_ptr<QCoreApplication> application;
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(std::make_unique<QtEnvironment>().release());

std::string stateWord(CentralState state) {
    static const std::map<CentralState, std::string> words{
        {CentralState::unknown, "unknown"},         {CentralState::resetting, "resetting"},
        {CentralState::unsupported, "unsupported"}, {CentralState::unauthorized, "unauthorized"},
        {CentralState::poweredOff, "off"},          {CentralState::poweredOn, "on"}};
    return words.at(state);
}

std::string resultWord(const CentralError& error) {
    return error ? " error" : " ok";
}

} // namespace

std::string hex(const Payload& payload) {
    return QByteArray(reinterpret_cast<const char*>(payload.data()), std::ssize(payload))
        .toHex()
        .toStdString();
}

CentralUser::CentralUser(const Bus& bus) : central(bus) {
    central.setDelegate(this);
}

void CentralUser::didUpdateState() {
    log.push_back("state " + stateWord(central.state()));
    central.scanForPeripherals(serviceId);
}

void CentralUser::didDiscover(const PeripheralPtr& found, const Advertisement& /*advertisement*/) {
    log.push_back("discovered " + found->name().value_or("(nameless)"));
    peripheral = found;
    found->setDelegate(this);
}

void CentralUser::didConnect(const PeripheralPtr& connected) {
    log.emplace_back("connected");
    connected->discoverServices(serviceId);
}

void CentralUser::didFailToConnect(const PeripheralPtr& /*failed*/, const CentralError& error) {
    log.push_back("failed" + resultWord(error));
}

void CentralUser::didDisconnect(const PeripheralPtr& /*gone*/, const CentralError& error) {
    log.push_back("disconnected" + resultWord(error));
}

void CentralUser::didDiscoverServices(Peripheral& of, const CentralError& error) {
    log.push_back("services " + std::to_string(of.services().size()) + resultWord(error));
    for (const auto& service : of.services()) of.discoverCharacteristics(inputId, service);
}

void CentralUser::didDiscoverCharacteristics(Peripheral& of, const Service& service,
                                             const CentralError& error) {
    log.push_back("characteristics " + std::to_string(service.characteristics.size()) +
                  resultWord(error));
    if (service.characteristics.empty()) return;
    characteristic = service.characteristics.front();
    of.writeValue(Report::pairingProbe, characteristic, WriteType::withResponse);
}

void CentralUser::didWriteValue(Peripheral& /*of*/, const Characteristic& /*written*/,
                                const CentralError& error) {
    log.push_back("probe" + resultWord(error));
}

bool CentralUser::waitFor(const std::string& line) const {
    return runUntil([&] { return count(line) > 0; });
}

int CentralUser::count(const std::string& line) const {
    return static_cast<int>(std::ranges::count(log, line));
}

void CentralUser::connect() {
    ASSERT_TRUE(runUntil([this] { return peripheral != nullptr; })) << "nothing discovered";
    central.connect(peripheral);
}

void CentralUser::makeReady() {
    connect();
    ASSERT_TRUE(waitFor("probe ok")) << testing::PrintToString(log);
}

void CentralUser::send(const Payload& payload) const {
    peripheral->writeValue(payload, characteristic, WriteType::withoutResponse);
}

Lines CentralUser::sendKeys(int count) const {
    Lines sent;
    for (int number = 0; number < count; ++number) {
        const auto usage = static_cast<std::uint8_t>(4 + number % 200);
        const auto modifiers = static_cast<std::uint8_t>(number / 200 % 16);
        const auto payload = Report::keyboard(modifiers, std::vector{usage});
        send(payload);
        sent.push_back(hex(payload));
    }
    return sent;
}

BluezStage::BluezStage(Daemon wanted, QStringList options) : arguments(std::move(options)) {
    if (wanted == Daemon::running) startDaemon();
}

BluezStage::~BluezStage() {
    for (const auto& name : connections) QDBusConnection::disconnectFromBus(name);
}

void BluezStage::startDaemon() {
    daemon = std::make_unique<demo::ChildProcess>(
        QStringLiteral(VIRTUAL_DONGLE), arguments,
        demo::ChildProcess::Environment{{u"DBUS_SYSTEM_BUS_ADDRESS"_s, bus.address()}});
    daemon->onLine([this](const QString& line) { lines += line; });
    if (!daemon->readLineUntil([](const QString& line) { return line == u"ready"; }, 15s))
        throw std::runtime_error("the virtual dongle does not start");
}

QDBusConnection BluezStage::connect() {
    static int number = 0;
    connections += u"stage-%1"_s.arg(++number);
    return QDBusConnection::connectToBus(bus.address(), connections.last());
}

void BluezStage::ask(const QString& method, const QVariantList& values) {
    auto message = QDBusMessage::createMethodCall(u"org.quenthisar.VirtualDongle"_s, u"/"_s,
                                                  u"org.quenthisar.VirtualDongle1"_s, method);
    message.setArguments(values);
    const auto reply = connect().call(message);
    EXPECT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
}

const QStringList& BluezStage::farEnd() {
    daemon->pendingLines();
    return lines;
}

bool BluezStage::waitForFarEnd(const QString& text) {
    return runUntil([&] {
        return std::ranges::any_of(farEnd(),
                                   [&](const QString& line) { return line.contains(text); });
    });
}

Lines BluezStage::received(const QString& way) {
    const auto mark = u" report "_s + way + u' ';
    Lines payloads;
    for (const auto& line : farEnd())
        if (const auto at = line.indexOf(mark); at >= 0)
            payloads.push_back(line.mid(at + mark.size(), 30).toStdString());
    return payloads;
}

} // namespace quenthisar
