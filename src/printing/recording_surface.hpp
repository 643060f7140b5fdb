#pragma once
// A page surface that draws nothing and keeps every call with its arguments, so that tests and
// tools can check positions in twips, fonts and the order of calls.
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/PageSurface.hpp"

namespace nimbara::printing {

struct SurfaceCall {
    std::string op;               // the operation's name, e.g. "Line", "Print", "setFontName"
    std::vector<double> numbers;  // its numeric arguments in order
    std::string text;             // its text argument: the printed text, font name or picture name

    // The numbers as whole twips, for comparing with the truncated coordinates of the boxes.
    std::vector<long> whole() const;
};

// Text metrics are a fixed model (line height 1.15 em, every character half an em wide), so that
// recorded positions do not depend on the fonts installed.
class RecordingSurface final : public PageSurface {
public:
    void setScaleMode(int mode) override;
    void setOrientation(int orientation) override;
    void setPaperSize(int size) override;
    void setTrackDefault(bool track) override;
    void setFontName(std::string_view name) override;
    void setFontSize(double points) override;
    void setFontBold(bool bold) override;
    void setForeColor(Colour colour) override;
    void setFillColor(Colour colour) override;
    void setFillStyle(int style) override;
    void setDrawMode(int mode) override;
    void setCurrentX(double twips) override;
    void setCurrentY(double twips) override;
    double CurrentX() const override { return x_; }
    double CurrentY() const override { return y_; }
    void Print(std::string_view text) override;
    double TextWidth(std::string_view text) override;
    void Line(int flags, double x1, double y1, double x2, double y2, Colour colour) override;
    void Circle(int flags, double x, double y, double radius, Colour colour, double start, double end,
                double aspect) override;
    void PaintPicture(const Picture& picture, double x, double y) override;
    void NewPage() override;
    void EndDoc() override;

    const std::vector<SurfaceCall>& calls() const { return calls_; }
    // The calls of one operation, in order.
    std::vector<SurfaceCall> calls_of(std::string_view op) const;
    // Every printed text, in order.
    std::vector<std::string> printed() const;
    void clear() { calls_.clear(); }

    // The state the logic relies on between calls.
    const std::string& font_name() const { return font_name_; }
    double font_size() const { return font_size_; }
    bool font_bold() const { return bold_; }
    Colour fill_color() const { return fill_color_; }
    int fill_style() const { return fill_style_; }
    Colour fore_color() const { return fore_color_; }
    int pages_ended() const { return pages_ended_; }
    int documents_ended() const { return documents_ended_; }

    double line_height() const { return font_size_ * 20.0 * 1.15; }

private:
    void record(std::string op, std::vector<double> numbers, std::string text = {});

    std::vector<SurfaceCall> calls_;
    double x_ = 0;
    double y_ = 0;
    std::string font_name_ = "Arial";
    double font_size_ = 10;
    bool bold_ = false;
    Colour fore_color_ = kBlack;
    Colour fill_color_ = kBlack;
    int fill_style_ = 1;  // transparent until the logic asks for solid
    int pages_ended_ = 0;
    int documents_ended_ = 0;
};

}  // namespace nimbara::printing
