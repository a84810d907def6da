// Annotated pictures: frames at an integer zoom with overlays, lines, labels, plots and heat maps, drawn with Cairo.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "frame_io.h"

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

namespace quofp {

/** A colour with opacity, each part from 0 to 1. */
struct Colour {
  double red = 0;
  double green = 0;
  double blue = 0;
  double opacity = 1;

  constexpr Colour with_opacity(double value) const { return {red, green, blue, value}; }
};

/** The palette of all pictures. The marks keep apart for readers with a colour vision deficiency (Okabe and Ito). */
namespace colours {
inline constexpr Colour kPaper{1, 1, 1};
inline constexpr Colour kInk{0.13, 0.13, 0.15};
inline constexpr Colour kFaint{0.55, 0.56, 0.58};
inline constexpr Colour kRule{0.86, 0.87, 0.88};
inline constexpr Colour kRed{0.84, 0.37, 0.00};
inline constexpr Colour kBlue{0.00, 0.45, 0.70};
inline constexpr Colour kGreen{0.00, 0.62, 0.45};
inline constexpr Colour kYellow{0.94, 0.89, 0.26};
inline constexpr Colour kOrange{0.90, 0.62, 0.00};
inline constexpr Colour kSky{0.34, 0.71, 0.91};
inline constexpr Colour kPurple{0.80, 0.47, 0.65};
}  // namespace colours

/** A colour for a value from 0 to 1 on a scale that is even to the eye, dark blue to yellow. */
Colour heat_colour(double value);

/** A rectangle in picture pixels; x and y are its top left corner. */
struct Area {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

enum class Align { kLeft, kCentre, kRight };

struct TextStyle {
  double size = 12;  // height of the font in pixels
  Colour colour = colours::kInk;
  Align align = Align::kLeft;
  bool bold = false;
};

/** Values of a plot that share one colour. */
struct Series {
  std::vector<double> values;  // one per step along x
  Colour colour = colours::kBlue;
};

/** A picture under construction. Coordinates are picture pixels from the top left corner; pixel (0, 0) covers the
 *  square from (0, 0) to (1, 1), so the centre of frame pixel x at zoom z lies at (x + 0.5) * z. */
class Canvas {
 public:
  Canvas(int width, int height, Colour background = colours::kPaper);
  /** A picture that shows just the frame, each pixel as a square of zoom x zoom. */
  Canvas(const Frame& frame, int zoom);
  ~Canvas();
  Canvas(Canvas&& other) noexcept;
  Canvas& operator=(Canvas&& other) noexcept;

  int width() const;
  int height() const;

  /** Draws a frame with its top left corner at (x, y), each pixel as a square of zoom x zoom. */
  void draw_frame(const Frame& frame, int x, int y, int zoom);

  /** Draws another picture with its top left corner at (x, y). */
  void draw_picture(const Canvas& picture, int x, int y);

  /** Colours the pixels of a width x height mark image that are not 0, placed like a frame. */
  void draw_marks(std::span<const uint8_t> marks, int32_t width, int32_t height, int x, int y, int zoom, Colour colour);

  void draw_line(double x0, double y0, double x1, double y1, Colour colour, double thickness = 1);
  void draw_circle(double x, double y, double radius, Colour colour, double thickness = 1);
  void fill_circle(double x, double y, double radius, Colour colour);
  /** Draws the outline inside the area. */
  void draw_rectangle(const Area& area, Colour colour, double thickness = 1);
  void fill_rectangle(const Area& area, Colour colour);

  /** Writes one line of text whose baseline lies at y; x is its left end, centre or right end. */
  void draw_text(double x, double y, const std::string& text, const TextStyle& style = {});
  double text_width(const std::string& text, const TextStyle& style = {});

  /** Plots series over a common x axis, values from low to high, in an area whose margins hold the labels. */
  void draw_plot(const Area& area, const std::vector<Series>& series, double low, double high,
                 const std::string& title = "");

  /** Draws rows of values as coloured cells, low to high as dark blue to yellow. `values` holds rows x columns. */
  void draw_heat_map(const Area& area, std::span<const double> values, size_t columns, double low, double high);

  /** The picture as a PNG file. @throws Failure */
  void save(const std::string& path);
  std::vector<uint8_t> png();

 private:
  struct Release {
    void operator()(cairo_t* context) const;
    void operator()(cairo_surface_t* surface) const;
  };
  void set_colour(Colour colour);
  void set_font(const TextStyle& style);

  std::unique_ptr<cairo_surface_t, Release> surface_;
  std::unique_ptr<cairo_t, Release> context_;
};

/** The zoom at which a frame is shown when none is given: the largest whole number, 1 to 8, that keeps its longer side
 *  within `side` picture pixels. */
int fitting_zoom(int32_t width, int32_t height, int side = 640);

}  // namespace quofp
