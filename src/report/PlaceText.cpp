#include "report/PlaceText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "constraints/CPtCstr.h"
#include "model/CGrid.h"
#include "solver/CConstraintRows.h"

namespace {

constexpr int kDigits = 5;
constexpr double kNegligible = 1e-9;  // of the unit that matters

// What the surface has at a place.
struct CSurfaceSite {
  double m_fZ = 0.0;
  std::optional<CPlanePoint> m_Slope;  // none in a tear
};

class CPlaceWriter {
 public:
  CPlaceWriter(const CGrid& grid, std::string& text) : m_Grid(grid), m_Text(text) {
    const CExtent& e = grid.Surface().Lattice().Extent();
    m_fSide = std::max(e.x1 - e.x0, e.y1 - e.y0);
    m_Text.clear();
  }

  void Write(const CPlanePoint& place, double reach) {
    Add("x ", place.x, m_fSide);
    Add("   y ", place.y, m_fSide);
    const std::optional<CSurfaceSite> site = SiteAt(place);
    if (!site) return;
    Add("   z ", site->m_fZ, m_fSide);
    if (site->m_Slope) {
      Add("   dz/dx ", site->m_Slope->x, 1.0);
      Add("   dz/dy ", site->m_Slope->y, 1.0);
    }
    AddPixel(place);
    const CPtCstr* constraint = ConstraintAt(place, reach);
    if (constraint != nullptr) AddConstraint(*constraint);
  }

 private:
  void Add(const char* name, double value, double unit) {
    if (std::abs(value) < kNegligible * unit) value = 0.0;
    std::array<char, 32> number{};
    const auto end =
        std::to_chars(number.data(), number.data() + number.size(), value, std::chars_format::general, kDigits);
    m_Text += name;
    m_Text.append(number.data(), end.ptr);
  }
  void AddWhole(const char* name, int value) {
    std::array<char, 16> number{};
    const auto end = std::to_chars(number.data(), number.data() + number.size(), value);
    m_Text += name;
    m_Text.append(number.data(), end.ptr);
  }

  std::optional<CSurfaceSite> SiteAt(const CPlanePoint& place) const {
    const CLattice& lattice = m_Grid.Surface().Lattice();
    const CInterpolation surface = m_Grid.Surface().Interpolation();
    const auto triangle = surface.ShortStencil(lattice.ColumnOf(place.x), lattice.RowOf(place.y));
    if (!triangle) return std::nullopt;
    CSurfaceSite site{surface.HeightOf(*triangle), std::nullopt};
    const Vector3 normal = surface.NormalOf(*triangle);
    const CPlanePoint slope{-normal.x / normal.z, -normal.y / normal.z};
    if (std::isfinite(slope.x) && std::isfinite(slope.y)) site.m_Slope = slope;
    return site;
  }

  void AddPixel(const CPlanePoint& place) {
    const CTextureImages& images = m_Grid.Relighting().Textures();
    if (!images.HasPicture()) return;
    const CExtent& e = m_Grid.Surface().Lattice().Extent();
    const auto pixelOf = [](double share, int count) {
      return static_cast<int>(std::clamp(std::floor(share * count), 0.0, count - 1.0));
    };
    const int column = pixelOf((place.x - e.x0) / (e.x1 - e.x0), images.PictureWidth());
    const int row = pixelOf((place.y - e.y0) / (e.y1 - e.y0), images.PictureHeight());
    AddWhole("   pixel (", column);
    AddWhole(", ", images.PictureHeight() - 1 - row);
    const std::size_t texel = static_cast<std::size_t>(row) * static_cast<std::size_t>(images.TextureWidth()) +
                              static_cast<std::size_t>(column);
    const std::span<const std::uint8_t> colour = images.Image(CTextureImages::kPhotograph).subspan(3 * texel, 3);
    AddWhole(") of ", colour[0]);
    AddWhole(" ", colour[1]);
    AddWhole(" ", colour[2]);
  }

  const CPtCstr* ConstraintAt(const CPlanePoint& place, double reach) const {
    const CPtCstr* nearest = nullptr;
    for (const CPtCstr& c : m_Grid.Constraints().Points()) {
      const double distance = std::abs(place.x - c.m_fX) + std::abs(place.y - c.m_fY);
      if (distance > reach) continue;
      nearest = &c;
      reach = distance;
    }
    return nearest;
  }

  void AddConstraint(const CPtCstr& c) {
    if (c.HasKind(PtCstrKind::kPosition)) {
      const std::optional<CSurfaceSite> site = SiteAt({c.m_fX, c.m_fY});
      if (!site) return;
      Add("   height wanted ", c.m_fZ, m_fSide);
      Add(", kept ", site->m_fZ, m_fSide);
    }
    if (!c.HasKind(PtCstrKind::kNormal)) return;
    Add("   slope wanted (", c.m_fP, 1.0);
    Add(", ", c.m_fQ, 1.0);
    m_Text += ')';
    // As the solver takes it: the slope that is shown of the surface there is blended from corner to corner.
    const std::optional<CPlanePoint> kept =
        CConstraintRows::SlopesUnder(c, m_Grid.Surface().Tree(), m_Grid.Surface().Interpolation());
    if (!kept) return;
    Add(", kept (", kept->x, 1.0);
    Add(", ", kept->y, 1.0);
    m_Text += ')';
  }

  const CGrid& m_Grid;
  std::string& m_Text;
  double m_fSide;
};

}  // namespace

void DescribePlace(const CGrid& grid, const CPlanePoint& place, double reach, std::string& text) {
  CPlaceWriter(grid, text).Write(place, reach);
}
