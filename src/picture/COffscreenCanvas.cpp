#include "picture/COffscreenCanvas.h"

#include <array>

#define GL_GLEXT_PROTOTYPES
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include "drawing/FrameBuffer.h"

namespace {

GLuint NewStorage(GLenum attachment, GLenum format, int samples, int width, int height) {
  GLuint storage = 0;
  glGenRenderbuffers(1, &storage);
  glBindRenderbuffer(GL_RENDERBUFFER, storage);
  glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, width, height);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, storage);
  return storage;
}

}  // namespace

COffscreenCanvas::COffscreenCanvas(int width, int height) : m_iWidth(width), m_iHeight(height) {
  if (!MakeContext()) {
    m_Trouble = "There is no OpenGL to draw with, not even in software.";
  } else if (!MakeBuffers()) {
    m_Trouble = "OpenGL cannot draw a picture of " + std::to_string(width) + " by " + std::to_string(height) +
                " pixels with " + std::to_string(kSamples) + " samples each.";
  }
}

// The buffers go with their context. The display stays open until the process ends: closed, it would unload the driver,
// and what that keeps could no longer be told from what we lose.
COffscreenCanvas::~COffscreenCanvas() {
  if (m_pDisplay == EGL_NO_DISPLAY) return;
  eglMakeCurrent(m_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  if (m_pContext != EGL_NO_CONTEXT) eglDestroyContext(m_pDisplay, m_pContext);
}

bool COffscreenCanvas::MakeContext() {
  m_pDisplay = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  if (m_pDisplay == EGL_NO_DISPLAY || eglInitialize(m_pDisplay, nullptr, nullptr) == EGL_FALSE) return false;
  constexpr std::array<EGLint, 5> kWanted{EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                          EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = 0;
  if (eglBindAPI(EGL_OPENGL_API) == EGL_FALSE ||
      eglChooseConfig(m_pDisplay, kWanted.data(), &config, 1, &count) == EGL_FALSE || count == 0)
    return false;
  m_pContext = eglCreateContext(m_pDisplay, config, EGL_NO_CONTEXT, nullptr);
  return m_pContext != EGL_NO_CONTEXT &&
         eglMakeCurrent(m_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, m_pContext) == EGL_TRUE;
}

bool COffscreenCanvas::MakeBuffers() {
  const auto isComplete = [] {
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE && glGetError() == GL_NO_ERROR;
  };
  glGenFramebuffers(1, &m_uResolved);
  glBindFramebuffer(GL_FRAMEBUFFER, m_uResolved);
  NewStorage(GL_COLOR_ATTACHMENT0, GL_RGB8, 0, m_iWidth, m_iHeight);
  if (!isComplete()) return false;
  glGenFramebuffers(1, &m_uSampled);
  glBindFramebuffer(GL_FRAMEBUFFER, m_uSampled);
  NewStorage(GL_COLOR_ATTACHMENT0, GL_RGB8, kSamples, m_iWidth, m_iHeight);
  NewStorage(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, kSamples, m_iWidth, m_iHeight);
  glViewport(0, 0, m_iWidth, m_iHeight);
  return isComplete();
}

CPicture COffscreenCanvas::Picture() const {
  glBindFramebuffer(GL_READ_FRAMEBUFFER, m_uSampled);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_uResolved);
  glBlitFramebuffer(0, 0, m_iWidth, m_iHeight, 0, 0, m_iWidth, m_iHeight, GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_FRAMEBUFFER, m_uResolved);
  CPicture picture = Global::ReadFrameBuffer();
  glBindFramebuffer(GL_FRAMEBUFFER, m_uSampled);
  return picture;
}
