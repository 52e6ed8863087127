#include "tutorial/Scenes.h"

namespace {

std::vector<CStroke> CoffeeCreases() {
  const CStroke tableEdge{'n', false, {{0, 107}, {50, 73}, {100, 38}, {155, 0}}};
  const CStroke frontOfLip{'n',
                           false,
                           {{176, 130},
                            {181, 145},
                            {192, 160},
                            {203, 172},
                            {218, 184},
                            {233, 193},
                            {251, 200},
                            {270, 204},
                            {290, 206},
                            {310, 206},
                            {330, 202},
                            {349, 196},
                            {366, 187},
                            {381, 176},
                            {393, 162},
                            {401, 146}}};
  const CStroke insideOfLip{'n',
                            true,
                            {{291, 30},
                             {330, 36},
                             {363, 55},
                             {385, 82},
                             {391, 112},
                             {381, 142},
                             {359, 167},
                             {327, 184},
                             {289, 190},
                             {251, 184},
                             {219, 165},
                             {198, 138},
                             {191, 108},
                             {200, 78},
                             {223, 53},
                             {255, 36}}};
  const CStroke coffee{'n',
                       true,
                       {{287, 96},
                        {320, 100},
                        {348, 114},
                        {366, 133},
                        {370, 153},
                        {357, 174},
                        {332, 188},
                        {299, 194},
                        {264, 191},
                        {232, 180},
                        {210, 162},
                        {203, 140},
                        {212, 120},
                        {240, 103}}};
  return {frontOfLip, insideOfLip, coffee, tableEdge};
}

// From one side of the foot over the far rim to the other side: the front of the cup stays joined to the saucer.
std::vector<CPixel> CupOutline() {
  return {{213, 268}, {196, 240}, {182, 205}, {172, 165}, {172, 113}, {186, 64},  {230, 28}, {290, 17},
          {347, 31},  {389, 66},  {407, 113}, {398, 165}, {384, 205}, {362, 250}, {335, 272}};
}

std::vector<CTrace> CoffeeTears() {
  const CTrace cup{false, CupOutline()};
  const CTrace saucer{false,
                      {{170, 77},  {135, 105}, {110, 135}, {90, 170},  {80, 205},  {78, 240},  {85, 267},  {108, 299},
                       {131, 328}, {152, 347}, {180, 365}, {210, 379}, {245, 386}, {320, 382}, {370, 367}, {415, 340},
                       {450, 305}, {472, 265}, {479, 225}, {472, 185}, {455, 150}, {435, 125}, {420, 111}}};
  const CTrace spoon{false,
                     {{384, 208},
                      {372, 235},
                      {345, 252},
                      {328, 280},
                      {338, 317},
                      {362, 325},
                      {390, 313},
                      {406, 273},
                      {385, 238},
                      {388, 222}}};
  const CTrace handle{false,
                      {{222, 232}, {205, 252}, {197, 280}, {199, 297}, {215, 307}, {232, 300}, {245, 285}, {258, 262}}};
  return {cup, saucer, spoon, handle};
}

std::vector<CHeight> CoffeeHeights() {
  const int rim = 38;
  const int drink = 22;
  return {// The table and the floor behind it.
          {{30, 200}, 0},
          {{30, 380}, 0},
          {{560, 380}, 0},
          {{560, 200}, 0},
          {{560, 30}, 0},
          {{300, 6}, 0},
          {{100, 60}, 0},
          {{180, 20}, 0},
          {{15, 140}, 0},
          {{8, 8}, -30},
          {{100, 8}, -12},
          {{8, 75}, -12},
          // The saucer: its edge, then its hollow.
          {{95, 220}, 5},
          {{140, 120}, 5},
          {{170, 340}, 5},
          {{280, 365}, 5},
          {{400, 330}, 5},
          {{460, 230}, 5},
          {{430, 145}, 5},
          {{140, 230}, 2},
          {{190, 310}, 1},
          {{290, 320}, 1},
          {{430, 230}, 2},
          // The lip of the cup, once around.
          {{398, 113}, rim},
          {{384, 156}, rim},
          {{344, 188}, rim},
          {{290, 200}, rim},
          {{236, 188}, rim},
          {{196, 156}, rim},
          {{182, 113}, rim},
          {{196, 70}, rim},
          {{236, 38}, rim},
          {{290, 26}, rim},
          {{344, 38}, rim},
          {{384, 70}, rim},
          // The coffee.
          {{287, 145}, drink},
          {{240, 140}, drink},
          {{335, 150}, drink},
          {{287, 178}, drink},
          {{255, 168}, drink},
          {{320, 173}, drink},
          {{255, 115}, drink},
          {{320, 115}, drink},
          // The cup from its belly down to its foot.
          {{290, 240}, 25},
          {{230, 228}, 20},
          {{345, 235}, 20},
          {{280, 278}, 4},
          {{320, 278}, 4},
          // The spoon and the handle.
          {{366, 290}, 6},
          {{366, 312}, 5},
          {{366, 265}, 6},
          {{340, 290}, 5},
          {{392, 290}, 5},
          {{215, 262}, 22},
          {{208, 288}, 20}};
}

}  // namespace

CScene FirstScene() {
  constexpr int kRim = 38;
  constexpr int kDrink = 22;
  CScene scene;
  scene.m_Picture = "coffee.jpg";
  scene.m_iWidth = 600;
  scene.m_iHeight = 400;
  scene.m_aCreases = {{'p', false, CupOutline()}};
  scene.m_aHeights = {{{30, 200}, 0},      {{30, 380}, 0},       {{560, 380}, 0},      {{560, 60}, 0},
                      {{100, 60}, 0},      {{290, 5}, 0},        {{140, 200}, 3},      {{440, 200}, 3},
                      {{275, 300}, 3},     {{290, 200}, kRim},   {{236, 188}, kRim},   {{344, 188}, kRim},
                      {{186, 130}, kRim},  {{394, 130}, kRim},   {{206, 60}, kRim},    {{374, 60}, kRim},
                      {{290, 27}, kRim},   {{287, 145}, kDrink}, {{240, 150}, kDrink}, {{335, 150}, kDrink},
                      {{287, 110}, kDrink}};
  return scene;
}

CScene CoffeeScene() {
  CScene scene;
  scene.m_Picture = "coffee.jpg";
  scene.m_iWidth = 600;
  scene.m_iHeight = 400;
  scene.m_aCreases = CoffeeCreases();
  scene.m_aTears = CoffeeTears();
  scene.m_aHeights = CoffeeHeights();
  scene.m_aUpright = {{520, 330}, {80, 350}};
  return scene;
}

CScene CatScene() {
  CScene scene;
  scene.m_Picture = "cat.jpg";
  scene.m_iWidth = 451;
  scene.m_iHeight = 300;
  const CStroke leftEye{
      'n',
      true,
      {{172, 84}, {195, 92}, {207, 112}, {204, 136}, {186, 146}, {163, 144}, {143, 128}, {137, 108}, {149, 90}}};
  const CStroke rightEye{
      'n', true, {{323, 109}, {338, 118}, {342, 138}, {334, 158}, {317, 164}, {302, 156}, {296, 137}, {304, 117}}};
  const CStroke neck{'n', false, {{24, 124}, {50, 165}, {95, 215}, {150, 255}, {210, 280}, {250, 292}}};
  const CStroke noseBridge{'f', false, {{242, 205}, {236, 165}, {226, 125}, {222, 85}}};
  scene.m_aCreases = {leftEye, rightEye, neck, noseBridge};
  scene.m_aTears = {{false,
                     {{404, 0},
                      {394, 15},
                      {380, 35},
                      {368, 52},
                      {358, 72},
                      {364, 95},
                      {364, 122},
                      {358, 150},
                      {350, 178},
                      {342, 205},
                      {330, 235},
                      {318, 265},
                      {306, 299}}},
                    {false, {{42, 0}, {38, 20}, {34, 45}, {36, 70}, {32, 98}, {20, 118}, {0, 132}}}};
  scene.m_aHeights = {// From the nose up to the forehead.
                      {{264, 236}, 44},
                      {{262, 203}, 38},
                      {{250, 165}, 31},
                      {{238, 112}, 25},
                      {{234, 60}, 21},
                      {{225, 10}, 12},
                      {{150, 15}, 9},
                      {{300, 15}, 8},
                      // The eyes and what surrounds them.
                      {{172, 115}, 25},
                      {{319, 136}, 22},
                      {{125, 118}, 16},
                      {{217, 122}, 24},
                      {{172, 74}, 18},
                      {{172, 157}, 23},
                      {{285, 130}, 24},
                      {{352, 140}, 8},
                      {{319, 98}, 17},
                      {{319, 174}, 21},
                      // Cheeks, ears and muzzle.
                      {{100, 140}, 10},
                      {{130, 190}, 20},
                      {{70, 60}, 4},
                      {{50, 100}, 0},
                      {{60, 15}, 0},
                      {{372, 25}, -4},
                      {{346, 80}, 2},
                      {{338, 190}, 12},
                      {{318, 230}, 22},
                      {{210, 230}, 32},
                      {{295, 246}, 36},
                      {{262, 272}, 36},
                      {{190, 258}, 26},
                      // The chest, and the room behind.
                      {{20, 180}, -8},
                      {{60, 230}, -4},
                      {{15, 280}, -6},
                      {{120, 285}, 2},
                      {{200, 294}, 12},
                      {{420, 60}, -30},
                      {{440, 150}, -30},
                      {{400, 220}, -30},
                      {{430, 290}, -30},
                      {{390, 130}, -30},
                      {{12, 20}, -30},
                      {{12, 90}, -30},
                      {{440, 6}, -30}};
  return scene;
}

CScene CatWithDepthScene() {
  CScene scene;
  scene.m_Picture = "cat.jpg";
  scene.m_iWidth = 451;
  scene.m_iHeight = 300;
  // The nose, the forehead, and the room behind.
  scene.m_aHeights = {{{264, 236}, 44}, {{225, 40}, 15}, {{420, 150}, -30}};
  return scene;
}
