#include "model/SubtitleSettings.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <array>
#include <cmath>
#include <variant>

namespace korvane {
namespace {

using Member =
    std::variant<std::string SubtitleSettings::*, double SubtitleSettings::*, bool SubtitleSettings::*>;

struct Field {
    const char* key;
    Member member;
};

/// In the order in which a document is checked.
const std::array<Field, 13> kFields{{{"fontFamilyName", &SubtitleSettings::fontFamilyName},
                                     {"fontPostscriptName", &SubtitleSettings::fontPostscriptName},
                                     {"fontSize", &SubtitleSettings::fontSize},
                                     {"textColorR", &SubtitleSettings::textColorR},
                                     {"textColorG", &SubtitleSettings::textColorG},
                                     {"textColorB", &SubtitleSettings::textColorB},
                                     {"hasShadow", &SubtitleSettings::hasShadow},
                                     {"shadowColorR", &SubtitleSettings::shadowColorR},
                                     {"shadowColorG", &SubtitleSettings::shadowColorG},
                                     {"shadowColorB", &SubtitleSettings::shadowColorB},
                                     {"shadowRadius", &SubtitleSettings::shadowRadius},
                                     {"verticalPosition", &SubtitleSettings::verticalPosition},
                                     {"hasPopAnimation", &SubtitleSettings::hasPopAnimation}}};

std::optional<QJsonValue> encoded(const std::string& value) {
    return QJsonValue(QString::fromStdString(value));
}
std::optional<QJsonValue> encoded(bool value) {
    return QJsonValue(value);
}
std::optional<QJsonValue> encoded(double value) {
    if (!std::isfinite(value))
        return std::nullopt;
    return QJsonValue(value);
}

std::string quoted(const char* key) {
    return "“" + std::string(key) + "”";
}

const char* wordFor(QJsonValue::Type type) {
    switch (type) {
        case QJsonValue::Null:
            return "null";
        case QJsonValue::Bool:
            return "true or false";
        case QJsonValue::Double:
            return "a number";
        case QJsonValue::String:
            return "a text";
        case QJsonValue::Array:
            return "a list";
        case QJsonValue::Object:
            return "an object";
        case QJsonValue::Undefined:
            return "nothing";
    }
    return "something else";
}

void require(const char* key, const QJsonValue& value, QJsonValue::Type type) {
    if (value.type() != type)
        throw SubtitleSettingsError(quoted(key) + " must be " + wordFor(type) + ", not " +
                                    wordFor(value.type()));
}

void decode(const char* key, const QJsonValue& value, std::string& target) {
    require(key, value, QJsonValue::String);
    target = value.toString().toStdString();
}

void decode(const char* key, const QJsonValue& value, bool& target) {
    require(key, value, QJsonValue::Bool);
    target = value.toBool();
}

void decode(const char* key, const QJsonValue& value, double& target) {
    require(key, value, QJsonValue::Double);
    if (!std::isfinite(value.toDouble()))
        throw SubtitleSettingsError(quoted(key) + " is too large a number");
    target = value.toDouble();
}

QJsonObject objectIn(const QByteArray& json) {
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError)
        throw SubtitleSettingsError("the document is not JSON: " + error.errorString().toStdString() +
                                    " at byte " + std::to_string(error.offset));
    if (!document.isObject())
        throw SubtitleSettingsError("the document must be one JSON object with a key for each setting");
    return document.object();
}

}  // namespace

void SubtitleSettings::extract(const Color& color, double& red, double& green, double& blue) {
    const Color rgb = color.inDeviceRgb().value_or(Color::white());
    red = rgb.red;
    green = rgb.green;
    blue = rgb.blue;
}

std::optional<QByteArray> SubtitleSettings::toJson() const {
    QJsonObject object;
    for (const auto& [key, member] : kFields) {
        const auto value = std::visit([this](auto field) { return encoded(this->*field); }, member);
        if (!value)
            return std::nullopt;
        object.insert(QLatin1String(key), *value);
    }
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

SubtitleSettings SubtitleSettings::fromJson(const QByteArray& json) {
    const QJsonObject object = objectIn(json);
    SubtitleSettings settings;
    for (const auto& field : kFields) {
        const char* key = field.key;
        const auto found = object.constFind(QLatin1String(key));
        if (found == object.constEnd())
            throw SubtitleSettingsError(quoted(key) + " is missing");
        const QJsonValue value = found.value();
        std::visit([&](auto member) { decode(key, value, settings.*member); }, field.member);
    }
    return settings;
}

bool SubtitleSettings::save(UserDefaults& store) const {
    const auto json = toJson();
    return json && store.setData(*json, defaultsKey);
}

SubtitleSettings SubtitleSettings::load(const UserDefaults& store) {
    const auto json = store.data(defaultsKey);
    if (!json)
        return {};
    try {
        return fromJson(*json);
    } catch (const SubtitleSettingsError&) {
        return {};
    }
}

}  // namespace korvane
