// Sizes, points, rectangles and affine transforms in doubles: what pictures and layers are placed with.
// Plain values, standard library only.
#pragma once

namespace korvane {

struct Size {
    double width = 0.0;
    double height = 0.0;
    friend bool operator==(const Size&, const Size&) = default;
};

struct Point {
    double x = 0.0;
    double y = 0.0;
    friend bool operator==(const Point&, const Point&) = default;
};

/// Half-open: covers [x, x + width) x [y, y + height).
struct Rect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    Point center() const { return {x + width / 2.0, y + height / 2.0}; }
    friend bool operator==(const Rect&, const Rect&) = default;
};

/// Row-vector convention: (x, y) maps to (a x + c y + tx, b x + d y + ty).
struct AffineTransform {
    double a = 1.0;
    double b = 0.0;
    double c = 0.0;
    double d = 1.0;
    double tx = 0.0;
    double ty = 0.0;

    static AffineTransform scale(double sx, double sy) { return {sx, 0.0, 0.0, sy, 0.0, 0.0}; }
    static AffineTransform translation(double x, double y) { return {1.0, 0.0, 0.0, 1.0, x, y}; }

    /// This transform first, then `next`.
    AffineTransform concatenating(const AffineTransform& next) const {
        return {a * next.a + b * next.c,
                a * next.b + b * next.d,
                c * next.a + d * next.c,
                c * next.b + d * next.d,
                tx * next.a + ty * next.c + next.tx,
                tx * next.b + ty * next.d + next.ty};
    }
    Point apply(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
    friend bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

}  // namespace korvane
