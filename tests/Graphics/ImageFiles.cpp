#include "Graphics/ImageFiles.h"

#include <cstdlib>

#include <spng.h>
#include <turbojpeg.h>

namespace trelmix {
namespace {

FileBytes copyOf(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const std::byte*>(data);
    return {bytes, bytes + size};
}

void setPalette(spng_ctx* context, const std::vector<std::uint32_t>& colors) {
    spng_plte palette{};
    spng_trns transparency{};
    for (const std::uint32_t color : colors) {
        spng_plte_entry& entry = palette.entries[palette.n_entries++];
        entry.red = static_cast<std::uint8_t>(color >> 24);
        entry.green = static_cast<std::uint8_t>(color >> 16);
        entry.blue = static_cast<std::uint8_t>(color >> 8);
        transparency.type3_alpha[transparency.n_type3_entries++] = static_cast<std::uint8_t>(color);
    }
    spng_set_plte(context, &palette);
    spng_set_trns(context, &transparency);
}

} // namespace

FileBytes pngFile(const PngSpec& spec, const std::vector<std::uint8_t>& samples) {
    spng_ctx* const context = spng_ctx_new(SPNG_CTX_ENCODER);
    spng_ihdr header{};
    header.width = spec.width;
    header.height = spec.height;
    header.bit_depth = spec.bitDepth;
    header.color_type = spec.colorType;
    header.interlace_method = spec.isInterlaced ? 1 : 0;
    spng_set_option(context, SPNG_ENCODE_TO_BUFFER, 1);
    spng_set_ihdr(context, &header);
    if (!spec.palette.empty()) {
        setPalette(context, spec.palette);
    }
    if (spec.transparentGrey) {
        spng_trns transparency{};
        transparency.gray = *spec.transparentGrey;
        spng_set_trns(context, &transparency);
    }
    if (spec.hasGamma) {
        spng_set_gama(context, 1.0);
    }
    FileBytes file;
    if (spng_encode_image(context, samples.data(), samples.size(), SPNG_FMT_PNG, SPNG_ENCODE_FINALIZE) == 0) {
        std::size_t size = 0;
        int error = 0;
        void* const data = spng_get_png_buffer(context, &size, &error);
        file = copyOf(data, size);
        std::free(data);
    }
    spng_ctx_free(context);
    return file;
}

namespace {

FileBytes compressed(int width, int height, const std::vector<std::uint8_t>& samples, int format, int flags) {
    const tjhandle handle = tjInitCompress();
    unsigned char* data = nullptr;
    unsigned long size = 0;
    tjCompress2(handle, samples.data(), width, 0, height, format, &data, &size, TJSAMP_420, 95, flags);
    FileBytes file = copyOf(data, size);
    tjFree(data);
    tjDestroy(handle);
    return file;
}

} // namespace

FileBytes progressiveJpegFile(int width, int height, const std::vector<std::uint8_t>& rgb) {
    return compressed(width, height, rgb, TJPF_RGB, TJFLAG_PROGRESSIVE);
}

FileBytes inkJpegFile(int width, int height, const std::vector<std::uint8_t>& cmyk) {
    return compressed(width, height, cmyk, TJPF_CMYK, 0);
}

} // namespace trelmix
