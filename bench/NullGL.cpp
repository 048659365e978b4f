// OpenGL ES calls that say that all went well and do nothing, so that what remains of a frame's time is ours.
// These are the ones whose answers count; the others reach a library that has no context and ignores them.

#include <GLES2/gl2.h>

namespace {

GLuint lastName = 0;

void makeNames(GLsizei count, GLuint* names) {
    for (GLsizei i = 0; i < count; ++i) {
        names[i] = ++lastName;
    }
}

} // namespace

extern "C" {

void glGenTextures(GLsizei count, GLuint* names) {
    makeNames(count, names);
}
void glGenBuffers(GLsizei count, GLuint* names) {
    makeNames(count, names);
}
void glGenFramebuffers(GLsizei count, GLuint* names) {
    makeNames(count, names);
}
void glGenRenderbuffers(GLsizei count, GLuint* names) {
    makeNames(count, names);
}
GLuint glCreateShader(GLenum) {
    return ++lastName;
}
GLuint glCreateProgram() {
    return ++lastName;
}
void glGetShaderiv(GLuint, GLenum, GLint* value) {
    *value = GL_TRUE;
}
void glGetProgramiv(GLuint, GLenum, GLint* value) {
    *value = GL_TRUE;
}
GLint glGetUniformLocation(GLuint, const GLchar*) {
    return 0;
}
GLenum glCheckFramebufferStatus(GLenum) {
    return GL_FRAMEBUFFER_COMPLETE;
}
GLenum glGetError() {
    return GL_NO_ERROR;
}
}
