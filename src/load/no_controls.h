#pragma once

#include "load/load_file.h"

namespace tarnwick {

// The controls of a program without a dialog.
class NoControls : public LoadControls {
public:
    void SetStatusText(const std::string&) override {}
    void ShowDepthSlider(bool) override {}
    void EnableDepthSlider(bool) override {}
    void SetDepthRange(std::int32_t, std::int32_t) override {}
    void SetDepthPosition(std::int32_t) override {}
    void SetDepthLabel(std::int32_t) override {}
    void UpdateData() override {}
};

} // namespace tarnwick
