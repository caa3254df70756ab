#include "ServiceBus.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QMetaType>

#include <string>

#include "RecordJson.h"

using nlohmann::json;

namespace ServiceBus {

namespace {

// JSON (as RecordJson makes it) to the D-Bus types: a{sv}, av, s, b, i, x, t, d.
QVariant JsonToBus(const json& value) {
    switch (value.type()) {
    case json::value_t::boolean:
        return value.get<bool>();
    case json::value_t::number_integer: {
        const auto number = value.get<std::int64_t>();
        if (number >= INT32_MIN && number <= INT32_MAX)
            return static_cast<qint32>(number);
        return static_cast<qlonglong>(number);
    }
    case json::value_t::number_unsigned: {
        const auto number = value.get<std::uint64_t>();
        if (number <= INT32_MAX)
            return static_cast<qint32>(number);
        return static_cast<qulonglong>(number);
    }
    case json::value_t::number_float:
        return value.get<double>();
    case json::value_t::string:
        return QString::fromStdString(value.get<std::string>());
    case json::value_t::array: {
        QVariantList list;
        for (const json& item : value) {
            if (!item.is_null())
                list.append(JsonToBus(item));
        }
        return list;
    }
    case json::value_t::object: {
        QVariantMap map;
        for (const auto& item : value.items()) {
            if (!item.value().is_null())
                map.insert(QString::fromStdString(item.key()), JsonToBus(item.value()));
        }
        return map;
    }
    default:
        return {};
    }
}

bool BusToJson(const QVariant& value, json& out, int depth);

// A container QtDBus left unread. Nesting is bounded: a peer may send anything.
bool ArgumentToJson(const QDBusArgument& argument, json& out, int depth) {
    if (depth > 16)
        return false;
    switch (argument.currentType()) {
    case QDBusArgument::BasicType:
        return BusToJson(argument.asVariant(), out, depth + 1);
    case QDBusArgument::VariantType: {
        QDBusVariant inner;
        argument >> inner;
        return BusToJson(inner.variant(), out, depth + 1);
    }
    case QDBusArgument::ArrayType: {
        out = json::array();
        argument.beginArray();
        while (!argument.atEnd()) {
            json item;
            if (!ArgumentToJson(argument, item, depth + 1))
                return false;
            out.push_back(std::move(item));
        }
        argument.endArray();
        return true;
    }
    case QDBusArgument::MapType: {
        out = json::object();
        argument.beginMap();
        while (!argument.atEnd()) {
            argument.beginMapEntry();
            json key;
            json item;
            const bool ok = ArgumentToJson(argument, key, depth + 1) && ArgumentToJson(argument, item, depth + 1);
            argument.endMapEntry();
            if (!ok || !key.is_string())
                return false;
            out[key.get<std::string>()] = std::move(item);
        }
        argument.endMap();
        return true;
    }
    default: // structures and the unknown
        return false;
    }
}

bool BusToJson(const QVariant& value, json& out, int depth) {
    if (depth > 16)
        return false;
    if (value.metaType() == QMetaType::fromType<QDBusArgument>())
        return ArgumentToJson(value.value<QDBusArgument>(), out, depth);
    if (value.metaType() == QMetaType::fromType<QDBusVariant>())
        return BusToJson(value.value<QDBusVariant>().variant(), out, depth + 1);
    if (value.metaType() == QMetaType::fromType<QDBusObjectPath>()) {
        out = value.value<QDBusObjectPath>().path().toStdString();
        return true;
    }
    if (value.typeId() == QMetaType::QVariantMap) {
        out = json::object();
        const QVariantMap map = value.toMap();
        for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
            json item;
            if (!BusToJson(it.value(), item, depth + 1))
                return false;
            out[it.key().toStdString()] = std::move(item);
        }
        return true;
    }
    if (value.typeId() == QMetaType::QVariantList) {
        out = json::array();
        for (const QVariant& item : value.toList()) {
            json element;
            if (!BusToJson(item, element, depth + 1))
                return false;
            out.push_back(std::move(element));
        }
        return true;
    }
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::ULongLong:
    case QMetaType::UChar:
    case QMetaType::Double:
    case QMetaType::QString:
    case QMetaType::QStringList:
    case QMetaType::QByteArray:
        out = VariantToJson(value);
        return true;
    default:
        return false;
    }
}

} // namespace

QVariantMap toBus(const QVariantMap& map) {
    return JsonToBus(MapToJson(map)).toMap();
}

bool fromBus(const QVariantMap& map, QVariantMap& out) {
    bool complete = true;
    out.clear();
    for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
        json document;
        QVariant value;
        std::string error;
        if (BusToJson(it.value(), document, 0) && JsonToVariant(document, value, error))
            out.insert(it.key(), value);
        else
            complete = false;
    }
    return complete;
}

} // namespace ServiceBus
