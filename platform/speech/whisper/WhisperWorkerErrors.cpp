// What goes wrong with a worker, as sentences for a person: each says what helps.
#include <sys/wait.h>

#include <csignal>

#include "platform/speech/whisper/WhisperProtocol.h"
#include "platform/speech/whisper/WhisperWorker.h"

namespace korvane {

void WhisperWorker::failed(const Message& message) {
    whisper::Line line(message.line);
    line.word();
    const auto kind = line.word();
    const auto& why = message.text;
    // Of a language that it doesn't know nothing has come to harm, nor of a model beside the one that it has.
    isUsable_ = kind == whisper::failure::language || kind == whisper::failure::voices;
    if (kind == whisper::failure::voices)
        throw VoiceModelError("The voice model" + (why.starts_with('"') ? "" : " \"" + voices_ + "\"") +
                              " isn't used. " + why);
    const auto name = "'" + model_.filename().string() + "'";
    if (kind == whisper::failure::memory)
        broken("There is not enough memory for the Whisper model " + name +
               ". Close other programs or choose a smaller model.");
    if (kind == whisper::failure::model)
        throw RecognitionError("Whisper can't use the model " + name + ". " + why +
                               " Install the model again.");
    if (kind == whisper::failure::language)
        throw RecognitionError("Whisper failed with the model " + name + ". " + why +
                               " Choose another language, or a multilingual model under Speech models.");
    if (kind == whisper::failure::machine)
        throw RecognitionError(
            "Whisper can't compute on this machine. English works with PocketSphinx instead: remove the "
            "Whisper models under Speech models, or give korvane-cli the option --engine pocketsphinx.");
    broken("Whisper failed with the model " + name + ". " + why +
           " Try again, or choose another model under Speech models.");
}

void WhisperWorker::broken(const std::string& sentence) const {
    if (usesCard_)
        throw WhisperCardError(sentence);
    throw RecognitionError(sentence);
}

void WhisperWorker::unreachable(const std::system_error& error) {
    process_.end();
    throw RecognitionError("Whisper can't be reached: " + error.code().message() +
                           ". Close other programs and try again.");
}

void WhisperWorker::died() {
    const auto status = process_.endOfItself(std::chrono::milliseconds(200));
    if (!status)
        hung();  // it lives and doesn't talk any more
    if (WIFSIGNALED(*status) && WTERMSIG(*status) == SIGKILL)
        broken(
            "Whisper was ended by the system, most likely because memory ran out. Close other programs or "
            "choose a smaller model.");
    const auto how = WIFSIGNALED(*status) ? "signal " + std::to_string(WTERMSIG(*status))
                                          : "code " + std::to_string(WEXITSTATUS(*status));
    if (WIFEXITED(*status) && WEXITSTATUS(*status) == 127)  // of the loader of programs
        throw RecognitionError(
            "Whisper's library can't be loaded. Close other programs and try again; if that doesn't help, "
            "install Korvane again.");
    broken("Whisper broke off unexpectedly (" + how +
           "). Try again, or choose another model under Speech models.");
}

void WhisperWorker::hung() {
    process_.end();
    broken(
        "Whisper didn't answer any more and was ended. Try again, or choose another model under "
        "Speech models.");
}

void WhisperWorker::tookTooLong() {
    process_.end();
    broken("Whisper took too long with the model '" + model_.filename().string() +
           "' and was ended. Choose a smaller model under Speech models.");
}

void WhisperWorker::talkedNonsense() {
    process_.end();
    broken("Whisper's worker answered something that makes no sense and was ended. Try again.");
}

}  // namespace korvane
