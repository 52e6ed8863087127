#include "drawing/CSampledBuffer.h"

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include "drawing/FrameBuffer.h"

CSampledBuffer::CSampledBuffer(int width, int height) : m_iWidth(width), m_iHeight(height) {
  GLint before = 0;
  glGetIntegerv(GL_FRAMEBUFFER_BINDING, &before);
  // Errors of before are not ours.
  while (glGetError() != GL_NO_ERROR) continue;
  m_bComplete = MakeBuffers();
  glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(before));
}

CSampledBuffer::~CSampledBuffer() {
  glDeleteFramebuffers(1, &m_uSampled);
  glDeleteFramebuffers(1, &m_uResolved);
  glDeleteRenderbuffers(static_cast<GLsizei>(m_uStorages), m_auStorages.data());
}

void CSampledBuffer::AddStorage(unsigned attachment, unsigned format, int samples) {
  GLuint& storage = m_auStorages[m_uStorages++];
  glGenRenderbuffers(1, &storage);
  glBindRenderbuffer(GL_RENDERBUFFER, storage);
  glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, m_iWidth, m_iHeight);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, storage);
}

bool CSampledBuffer::MakeBuffers() {
  const auto isComplete = [] {
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE && glGetError() == GL_NO_ERROR;
  };
  glGenFramebuffers(1, &m_uResolved);
  glBindFramebuffer(GL_FRAMEBUFFER, m_uResolved);
  AddStorage(GL_COLOR_ATTACHMENT0, GL_RGB8, 0);
  if (!isComplete()) return false;
  glGenFramebuffers(1, &m_uSampled);
  glBindFramebuffer(GL_FRAMEBUFFER, m_uSampled);
  AddStorage(GL_COLOR_ATTACHMENT0, GL_RGB8, kSamples);
  AddStorage(GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24, kSamples);
  return isComplete();
}

void CSampledBuffer::Begin() {
  glGetIntegerv(GL_VIEWPORT, m_aiViewport.data());
  glGetIntegerv(GL_FRAMEBUFFER_BINDING, &m_iBefore);
  glBindFramebuffer(GL_FRAMEBUFFER, m_uSampled);
  glViewport(0, 0, m_iWidth, m_iHeight);
}

CPicture CSampledBuffer::End() {
  glBindFramebuffer(GL_READ_FRAMEBUFFER, m_uSampled);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_uResolved);
  glBlitFramebuffer(0, 0, m_iWidth, m_iHeight, 0, 0, m_iWidth, m_iHeight, GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_FRAMEBUFFER, m_uResolved);
  CPicture picture = Global::ReadFrameBuffer();
  glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(m_iBefore));
  glViewport(m_aiViewport[0], m_aiViewport[1], m_aiViewport[2], m_aiViewport[3]);
  return picture;
}
