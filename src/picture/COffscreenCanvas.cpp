#include "picture/COffscreenCanvas.h"

#include <array>

#include <EGL/egl.h>
#include <EGL/eglext.h>

COffscreenCanvas::COffscreenCanvas(int width, int height) {
  if (!MakeContext()) {
    m_Trouble = "There is no OpenGL to draw with, not even in software.";
    return;
  }
  m_pBuffer = std::make_unique<CSampledBuffer>(width, height);
  if (m_pBuffer->IsComplete()) {
    m_pBuffer->Begin();
  } else {
    m_Trouble = "OpenGL cannot draw a picture of " + std::to_string(width) + " by " + std::to_string(height) +
                " pixels with " + std::to_string(CSampledBuffer::kSamples) + " samples each.";
  }
}

// The display stays open until the process ends: closed, it would unload the driver,
// and what that keeps could no longer be told from what we lose.
COffscreenCanvas::~COffscreenCanvas() {
  m_pBuffer.reset();
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

CPicture COffscreenCanvas::Picture() const { return m_pBuffer->End(); }
