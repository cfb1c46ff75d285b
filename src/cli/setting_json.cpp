#include "cli/setting_json.h"

#include "link/runtime_failure.h"

#include <QJsonArray>

namespace kavro {

namespace {

struct Json {
    QJsonValue operator()(bool value) const { return value; }
    QJsonValue operator()(double value) const { return value; }
    QJsonValue operator()(const std::string& value) const { return QString::fromStdString(value); }
    QJsonValue operator()(const std::vector<int>& numbers) const {
        QJsonArray array;
        for (const int number : numbers)
            array.append(number);
        return array;
    }
};

std::vector<int> NumbersOf(const QJsonArray& array) {
    std::vector<int> numbers;
    for (const auto& number : array) {
        numbers.push_back(number.toInt(-1));
        if (numbers.back() < 0)
            throw RuntimeFailure("A list of channels holds whole numbers from 0 on only.");
    }
    return numbers;
}

} // namespace

QJsonValue ToJson(const SettingValue& value) {
    return std::visit(Json(), value);
}

SettingValue FromJson(const QJsonValue& json) {
    switch (json.type()) {
    case QJsonValue::Bool:
        return json.toBool();
    case QJsonValue::Double:
        return json.toDouble();
    case QJsonValue::String:
        return json.toString().toStdString();
    case QJsonValue::Array:
        return NumbersOf(json.toArray());
    default:
        throw RuntimeFailure("The value of a setting is true or false, a number, a text or a list.");
    }
}

} // namespace kavro
