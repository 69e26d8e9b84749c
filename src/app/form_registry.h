#pragma once
// Makes every form of this build reachable by name.
void register_all_forms();
