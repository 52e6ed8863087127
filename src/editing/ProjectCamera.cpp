#include "editing/ProjectCamera.h"

CCamera CameraOf(const CProjectViews& views, CCamera camera) {
  camera.m_Centre = views.m_Centre;
  camera.m_Eye = views.m_Eye;
  camera.m_Up = views.m_Up;
  camera.m_fR = views.m_fR;
  camera.m_fR0 = views.m_fR0;
  camera.m_fTheta = views.m_fTheta;
  camera.m_fPhi = views.m_fPhi;
  camera.m_fZeta = views.m_fZeta;
  return camera;
}

void KeepCamera(const CCamera& camera, CProjectViews& views) {
  views.m_Centre = camera.m_Centre;
  views.m_Eye = camera.m_Eye;
  views.m_Up = camera.m_Up;
  views.m_fR = camera.m_fR;
  views.m_fR0 = camera.m_fR0;
  views.m_fTheta = camera.m_fTheta;
  views.m_fPhi = camera.m_fPhi;
  views.m_fZeta = camera.m_fZeta;
}
