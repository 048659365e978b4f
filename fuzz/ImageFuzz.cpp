// Whatever the bytes are, decoding gives either nothing or an image whose pixels are all there.
#include <Trelmix/Platform/UIImage.h>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string reason;
    const auto image = trelmix::UIImage::withData(std::as_bytes(std::span(data, size)), 1, &reason);
    if (image) {
        const auto expected = static_cast<std::size_t>(image->pixelWidth()) *
                              static_cast<std::size_t>(image->pixelHeight()) * 4;
        if (image->pixels().size() != expected || expected == 0) {
            std::abort();
        }
    } else if (reason.empty()) {
        std::abort();
    }
    return 0;
}
