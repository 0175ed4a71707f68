#include "platform/speech/SystemSpeechAuthorization.h"

#include <fstream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace korvane {
namespace {

using Status = SpeechAuthorizationStatus;

Status statusNamed(std::string_view word) {
    if (word.empty() || word == "authorized")
        return Status::authorized;
    if (word == "restricted")
        return Status::restricted;
    return Status::denied;
}

Status statusInFile(const std::filesystem::path& folder) {
    if (folder.empty())
        return Status::authorized;
    const auto path = folder / "korvane" / "speech-recognition";
    std::error_code error;
    const auto kind = std::filesystem::status(path, error).type();
    if (kind == std::filesystem::file_type::not_found)
        return Status::authorized;
    std::ifstream file(path);
    if (kind != std::filesystem::file_type::regular || !file)
        return Status::denied;
    std::string word;
    file >> word;
    return statusNamed(word);
}

Status stricter(Status a, Status b) {
    const auto rank = [](Status status) {
        return status == Status::restricted ? 2 : status == Status::authorized ? 0 : 1;
    };
    return rank(b) > rank(a) ? b : a;
}

}  // namespace

SystemSpeechAuthorization::SystemSpeechAuthorization(Environment environment)
    : environment_(std::move(environment)), folders_(StandardFolders::of(environment_)) {}

SystemSpeechAuthorization::SystemSpeechAuthorization(Environment environment, StandardFolders folders)
    : environment_(std::move(environment)), folders_(std::move(folders)) {}

void SystemSpeechAuthorization::request(std::function<void(Status)> completion) {
    completion(status());
}

Status SystemSpeechAuthorization::status() const {
    const auto session = statusNamed(environment_("KORVANE_SPEECH_RECOGNITION").value_or(""));
    const auto person = statusInFile(folders_.configHome);
    return stricter(stricter(session, statusInFile(folders_.systemConfig)), person);
}

}  // namespace korvane
