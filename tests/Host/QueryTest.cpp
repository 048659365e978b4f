// What a frame asks the driver about its state: some answer only once all that was drawn is done. Stands
// between the library and the driver for the questions that it could ask.
#include "Host/HostStage.h"

#include <Trelmix/TrelmixMapEngineFactory.h>

#include <GLES3/gl3.h>

#include <dlfcn.h>

namespace {
int questions = 0;

template <class Function>
Function* next(const char* name, Function*) {
    ++questions;
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}
} // namespace

#define TRELMIX_COUNTED(type, name, parameters, arguments)                                                   \
    extern "C" type name parameters {                                                                        \
        return next(#name, &name) arguments;                                                                 \
    }
TRELMIX_COUNTED(void, glGetIntegerv, (GLenum name, GLint* value), (name, value))
TRELMIX_COUNTED(void, glGetFloatv, (GLenum name, GLfloat* value), (name, value))
TRELMIX_COUNTED(GLboolean, glIsEnabled, (GLenum name), (name))
TRELMIX_COUNTED(void, glGetVertexAttribiv, (GLuint index, GLenum name, GLint* value), (index, name, value))

namespace trelmix::query_test {

struct QueryTest : WindowFixture {
    /// Of the fifth frame, in which the camera moves and something of every kind is drawn.
    int questionsOfAFrame(bool contextIsOurs) {
        engine->initialiseWithTarget({53.5, 10}, 17);
        TrelmixMapEngineFactory::createMapMarkerWith(plainImage(6, 6, {0, 0, 255, 255}), {53.5, 10})
            ->setMap(engine);
        TrelmixMapEngineFactory::createMapCircleWithCoordinate({53.5, 10}, 10)->setMap(engine);
        TrelmixMapEngineFactory::createMapPolygonWithCorners({{53.5, 10}, {53.501, 10}, {53.5, 10.001}})
            ->setMap(engine);
        const auto host = std::move(
            *ViewHost::make(engine, {{200, 150}, {{0, 0}, {200, 150}}, 1}, {.contextIsOurs = contextIsOurs}));
        for (int i = 0; i < 5; ++i) {
            engine->setCameraWithRotation(10.0 * i, 20, 17, false);
            host->pump();
            questions = 0;
            EXPECT_EQ(host->drawFrame(), ViewHost::Drawing::drawn) << host->failure();
        }
        return questions;
    }
};

TEST_F(QueryTest, aContextOfTheEnginesOwnIsAskedForNothing) {
    EXPECT_GT(questionsOfAFrame(false), 50); // else nothing is counted here
    EXPECT_EQ(questionsOfAFrame(true), 0);
}

} // namespace trelmix::query_test
