// SPDX-License-Identifier: Apache-2.0
#pragma once

// What the interposed calls ask of the node in control/touch_node.h.

namespace fp_host {

bool IsTouchNode(const char* path);
int OpenTouchNode();

bool IsTouchDescriptor(int fd);
void ForgetTouchDescriptor(int fd);
int TakeTouchRequest(unsigned long number, const void* argument);

}  // namespace fp_host
