#include "cli/WordsFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <charconv>
#include <cmath>

#include "cli/Failure.h"

namespace korvane::cli {
namespace {

class Reader {
  public:
    explicit Reader(std::string_view name) : name_(name) {}

    Transcript read(std::string_view json) const {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        const std::size_t skipped = json.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
        const std::string_view body = json.substr(skipped);
        if (json.size() > largestWordsFileBytes)
            refuse("is too large to be a list of words.");
        if (body.find_first_not_of(" \t\r\n") == std::string_view::npos)
            refuse("is empty; a list of words in JSON was expected.");

        QJsonParseError error;
        const auto document = QJsonDocument::fromJson(
            QByteArray::fromRawData(body.data(), static_cast<qsizetype>(body.size())), &error);
        if (error.error != QJsonParseError::NoError)
            refuse("is not valid JSON: " + error.errorString().toStdString() + " at byte " +
                   std::to_string(static_cast<std::size_t>(error.offset) + skipped) + ".");
        return document.isArray() ? Transcript{{}, {}, words(document.array())} : whole(document.object());
    }

  private:
    [[noreturn]] void refuse(const std::string& what) const { throw Failure(name_ + " " + what); }

    static std::string kind(const QJsonValue& value) {
        switch (value.type()) {
            case QJsonValue::Null:
                return "null";
            case QJsonValue::Bool:
                return "true or false";
            case QJsonValue::Double:
                return "a number";
            case QJsonValue::String:
                return "a text";
            case QJsonValue::Array:
                return "an array";
            case QJsonValue::Object:
                return "an object";
            case QJsonValue::Undefined:
                break;
        }
        return "missing";
    }

    Transcript whole(const QJsonObject& object) const {
        const auto list = object.value(u"words");
        if (list.isUndefined())
            refuse("has no \"words\"; an object with an array of words was expected.");
        if (!list.isArray())
            refuse("has \"words\" that is " + kind(list) + " where an array is needed.");

        Transcript transcript;
        if (const auto language = object.value(u"language"); !language.isUndefined() && !language.isNull()) {
            if (!language.isString())
                refuse("has \"language\" that is " + kind(language) + " where a text is needed.");
            transcript.language = language.toString().toStdString();
        }
        if (const auto duration = object.value(u"duration"); !duration.isUndefined() && !duration.isNull()) {
            if (!duration.isDouble() || !std::isfinite(duration.toDouble()))
                refuse("has \"duration\" that is " + kind(duration) + " where a number is needed.");
            transcript.durationSeconds = duration.toDouble();
        }
        transcript.words = words(list.toArray());
        return transcript;
    }

    std::vector<SpeechSegment> words(const QJsonArray& array) const {
        std::vector<SpeechSegment> result;
        result.reserve(static_cast<std::size_t>(array.size()));
        std::size_t index = 0;
        for (const auto& item : array) {
            const std::string where = "word " + std::to_string(index++);
            if (!item.isObject())
                refuse("has a " + where + " that is " + kind(item) +
                       " where an object with \"text\", \"start\" and \"end\" is needed.");
            const auto word = item.toObject();
            const auto text = word.value(u"text");
            if (text.isUndefined())
                refuse("has a " + where + " without \"text\".");
            if (!text.isString())
                refuse("has a " + where + " whose \"text\" is " + kind(text) + " where a text is needed.");
            const double start = seconds(word, QLatin1String("start"), where);
            const double end = seconds(word, QLatin1String("end"), where);
            result.emplace_back(text.toString().toStdString(), start, end);
        }
        return result;
    }

    double seconds(const QJsonObject& word, QLatin1String key, const std::string& where) const {
        const auto value = word.value(key);
        const std::string quoted = "\"" + std::string(key.data()) + "\"";
        if (value.isUndefined())
            refuse("has a " + where + " without " + quoted + ".");
        if (!value.isDouble())
            refuse("has a " + where + " whose " + quoted + " is " + kind(value) +
                   " where a number of seconds is needed.");
        if (!std::isfinite(value.toDouble()))
            refuse("has a " + where + " whose " + quoted + " is not a finite number.");
        return value.toDouble();
    }

    std::string name_;
};

void appendNumber(std::string& out, double value) {
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    out.append(digits, end);
}

void appendText(std::string& out, std::string_view text) {
    constexpr std::string_view hex = "0123456789abcdef";
    out += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        if (static_cast<unsigned char>(c) >= 0x20) {
            out += c;
            continue;
        }
        out += "\\u00";
        out += hex[static_cast<std::size_t>(c) >> 4];
        out += hex[static_cast<std::size_t>(c) & 15];
    }
    out += '"';
}

}  // namespace

Transcript parseWordsFile(std::string_view name, std::string_view json) {
    return Reader(name).read(json);
}

std::string formatWordsFile(const Transcript& transcript) {
    std::string out = "{\n";
    if (!transcript.language.empty()) {
        out += "  \"language\": ";
        appendText(out, transcript.language);
        out += ",\n";
    }
    if (transcript.durationSeconds) {
        out += "  \"duration\": ";
        appendNumber(out, *transcript.durationSeconds);
        out += ",\n";
    }
    out += "  \"words\": [";
    const char* separator = "\n";
    for (const auto& word : transcript.words) {
        out += separator;
        out += "    {\"text\": ";
        appendText(out, word.text());
        out += ", \"start\": ";
        appendNumber(out, word.start());
        out += ", \"end\": ";
        appendNumber(out, word.end());
        out += '}';
        separator = ",\n";
    }
    out += transcript.words.empty() ? "]\n}\n" : "\n  ]\n}\n";
    return out;
}

}  // namespace korvane::cli
