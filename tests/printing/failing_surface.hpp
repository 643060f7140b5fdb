#pragma once
// A page surface that passes every call on to another, and can fail at a chosen call.
#include <functional>
#include <stdexcept>
#include <string>

#include "nimbara/PageSurface.hpp"

namespace printing_test {

using namespace nimbara;

// Forwards every call to the surface it wraps, except the k-th (counted from 1), which throws
// instead; k 0 never fails. Modules count as one call, as a surface that places them at once has it.
class FailingSurface final : public PageSurface {
public:
    FailingSurface(PageSurface& inner, long fail_at, std::function<void()> on_call = {})
        : inner_(inner), fail_at_(fail_at), on_call_(std::move(on_call))
    {
    }

    long calls() const { return calls_; }
    int end_attempts() const { return end_attempts_; }

    void setScaleMode(int v) override { step(), inner_.setScaleMode(v); }
    void setOrientation(int v) override { step(), inner_.setOrientation(v); }
    void setPaperSize(int v) override { step(), inner_.setPaperSize(v); }
    void setTrackDefault(bool v) override { step(), inner_.setTrackDefault(v); }
    void setFontName(std::string_view v) override { step(), inner_.setFontName(v); }
    void setFontSize(double v) override { step(), inner_.setFontSize(v); }
    void setFontBold(bool v) override { step(), inner_.setFontBold(v); }
    void setForeColor(Colour v) override { step(), inner_.setForeColor(v); }
    void setFillColor(Colour v) override { step(), inner_.setFillColor(v); }
    void setFillStyle(int v) override { step(), inner_.setFillStyle(v); }
    void setDrawMode(int v) override { step(), inner_.setDrawMode(v); }
    void setCurrentX(double v) override { step(), inner_.setCurrentX(v); }
    void setCurrentY(double v) override { step(), inner_.setCurrentY(v); }
    double CurrentX() const override { return step(), inner_.CurrentX(); }
    double CurrentY() const override { return step(), inner_.CurrentY(); }
    void Print(std::string_view text) override { step(), inner_.Print(text); }
    double TextWidth(std::string_view text) override { return step(), inner_.TextWidth(text); }
    void Line(int flags, double x1, double y1, double x2, double y2, Colour c) override
    {
        step(), inner_.Line(flags, x1, y1, x2, y2, c);
    }
    void Circle(int flags, double x, double y, double r, Colour c, double start, double end, double aspect) override
    {
        step(), inner_.Circle(flags, x, y, r, c, start, end, aspect);
    }
    void PaintPicture(const Picture& p, double x, double y) override { step(), inner_.PaintPicture(p, x, y); }
    void PaintModules(const ModuleMatrix& m, double x, double y, double w, double h) override
    {
        step(), inner_.PaintModules(m, x, y, w, h);
    }
    void NewPage() override { step(), inner_.NewPage(); }
    void EndDoc() override
    {
        ++end_attempts_;
        step(), inner_.EndDoc();
    }

private:
    void step() const
    {
        if (on_call_) on_call_();
        if (++calls_ == fail_at_) throw std::runtime_error("injected fault at call " + std::to_string(calls_));
    }

    PageSurface& inner_;
    long fail_at_;
    std::function<void()> on_call_;  // runs before every call, to look at the printer mid-print
    mutable long calls_ = 0;
    int end_attempts_ = 0;
};

}  // namespace printing_test
