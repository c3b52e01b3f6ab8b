// The rule form's widgets over a `RuleEditor`: its three sections, every
// choice, note, stepper and locked checkbox the editor gives. Each control
// forwards the user's action to one command of the editor, which saves; the
// page is then rebuilt from the saved rules. Main thread only.
#pragma once

#include "Ashview/Shell/RuleEditor.h"
#include "AshviewQt/Form.h"

#include <memory>

namespace ashview::RuleForm {

/// Adds the three sections to `page`; the editor lives as long as the page.
void add(Form::Page& page, std::shared_ptr<RuleEditor> editor);

}  // namespace ashview::RuleForm
