#include "Render/RenderFixture.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

/// Counted on one thread only: the driver's own threads may allocate whenever they like.
thread_local bool isCounting = false;
std::atomic<int> allocations{0};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SANITIZER_HAS_THE_ALLOCATOR
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SANITIZER_HAS_THE_ALLOCATOR
#endif
#endif

#ifndef SANITIZER_HAS_THE_ALLOCATOR
void* counted(std::size_t size) {
    if (isCounting) {
        ++allocations;
    }
    if (void* memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
#endif

} // namespace

#ifndef SANITIZER_HAS_THE_ALLOCATOR
void* operator new(std::size_t size) {
    return counted(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
#endif

namespace trelmix::render_test::still_frame_test {

TEST_F(RenderTest, aFrameLikeTheOneBeforeAllocatesAndRewritesNothing) {
    Items items;
    const auto tile = plainImage(64, 64, {0, 200, 0, 255});
    const auto icon = plainImage(16, 16, {200, 0, 0, 128});
    for (std::uint64_t i = 0; i < 300; ++i) {
        const double x = static_cast<double>(i) / 3 - 50;
        switch (i % 3) {
        case 0:
            items.push_back(imageItem(tile, ground(x, -50, x + 1, 50), i, true));
            break;
        case 1:
            items.push_back(imageItem(icon, ground(x, -10, x + 9, 10), i));
            break;
        default:
            items.push_back(discItem({x, 20, 0}, 5, {0, 0, 1, 1}, i));
            break;
        }
    }
    DrawFrame frame = frameOf(items, cameraAt({}, 100));
    draw(frame, 100, 100);
    draw(frame, 100, 100);
    allocations = 0;
    isCounting = true;
    const auto still = renderer->draw(frame, 100, 100);
    isCounting = false;
    EXPECT_EQ(allocations, 0);
    EXPECT_EQ(still->rewrittenBytes, 0U);
    EXPECT_EQ(still->uploadedBytes, 0U);

    // One marker that moves rewrites no other.
    items[151] = imageItem(icon, ground(3, -10, 5, 10), 151);
    EXPECT_LT(draw(frameOf(items, frame.camera), 100, 100).rewrittenBytes, 4096U);
    draw(frame, 100, 100);
    // A camera that moves over the same list: only the order of what is visible may be written.
    for (int i = 1; i <= 3; ++i) {
        frame.camera = cameraAt({i * 4.0, 0, 0}, 100, 0.2, 0.1);
        isCounting = i > 1;
        const auto moved = renderer->draw(frame, 100, 100);
        isCounting = false;
        EXPECT_LE(moved->rewrittenBytes, 300U * 12);
    }
    EXPECT_EQ(allocations, 0);
}

} // namespace trelmix::render_test::still_frame_test
