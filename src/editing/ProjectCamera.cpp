#include "editing/ProjectCamera.h"

namespace {

// Both have the parts by the same names.
template <typename From, typename To>
void CopyCamera(const From& from, To& to) {
  to.m_Centre = from.m_Centre;
  to.m_Eye = from.m_Eye;
  to.m_Up = from.m_Up;
  to.m_fR = from.m_fR;
  to.m_fR0 = from.m_fR0;
  to.m_fTheta = from.m_fTheta;
  to.m_fPhi = from.m_fPhi;
  to.m_fZeta = from.m_fZeta;
}

}  // namespace

CCamera CameraOf(const CProjectViews& views, CCamera camera) {
  CopyCamera(views, camera);
  return camera;
}

void KeepCamera(const CCamera& camera, CProjectViews& views) { CopyCamera(camera, views); }
