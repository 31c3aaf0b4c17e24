#pragma once

#include "ScreenTest.h"
#include "VIRLOFormViewController.h"

#include "VIRLOFormButton.h"
#include "VIRLOFormTextField.h"

namespace virlo::test
{

/// A fullscreen ad whose action button "Ask" opens the contact form, driven by keys. The form sends to
/// "/store/…" and "/click/…".
class FormTest : public ScreenTest
{
protected:
    FormTest();

    /// The item's changes for an ad whose button has that action type.
    [[nodiscard]] static JSON form(const std::string& actionType, const JSON& item = {});
    /// Shows an ad and its form, faded in.
    void open(const std::string& actionType, const JSON& item = {});
    /// With that text prefilled.
    void openWith(const std::string& actionType, const std::string& text);

    [[nodiscard]] VIRLOFormTextField& field() const;
    [[nodiscard]] VIRLOFormButton& sendButton() const;
    [[nodiscard]] std::string alert() const;
    [[nodiscard]] bool fadesOut() const;
    /// The confirmation's, with its cross-fade ended.
    [[nodiscard]] bool awaitPage();
    /// The accessible name of what has the focus in what the keys go to; "none" or "several" must never be.
    [[nodiscard]] std::string focus() const;

    /// Leads the focus to that key of the keyboard by the arrows and selects it.
    void pick(const std::string& key);
    void typeByRemote(const std::string& text);

    /// Of the requests below that path, in order.
    [[nodiscard]] static std::vector<std::string> bodies(const std::string& path);

    Screen screen;
};

} // namespace virlo::test
