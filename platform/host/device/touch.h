// SPDX-License-Identifier: Apache-2.0
#pragma once

// The node of fp_host/touch_node.h, as the interposed calls use it.

namespace fp_host {

bool IsTouchNode(const char* path);
int OpenTouchNode();

bool IsTouchDescriptor(int fd);
void ForgetTouchDescriptor(int fd);
int TakeTouchRequest(unsigned long number, const void* argument);

}  // namespace fp_host
