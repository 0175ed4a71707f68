#include "platform/ffmpeg/FourierTransform.h"

extern "C" {
#include <libavutil/tx.h>
}

#include "platform/ffmpeg/MediaError.h"

namespace korvane {

void FourierTransform::End::operator()(AVTXContext* context) const {
    av_tx_uninit(&context);
}

FourierTransform::FourierTransform(std::size_t size) {
    AVTXContext* made = nullptr;
    const float scale = 1.0F;
    const int result = av_tx_init(&made, &function_, AV_TX_FLOAT_FFT, 0, static_cast<int>(size), &scale,
                                  AV_TX_INPLACE | AV_TX_UNALIGNED);
    context_.reset(made);
    if (result < 0)
        throw MediaError("There is not enough memory to look at the sound.");
}

void FourierTransform::operator()(std::span<std::complex<float>> values) const {
    function_(context_.get(), values.data(), values.data(), sizeof(std::complex<float>));
}

}  // namespace korvane
