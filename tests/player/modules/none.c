/* SPDX-License-Identifier: Apache-2.0
 *
 * A shared object that is no module. */
int NoModule(void);

int NoModule(void) {
  return 0;
}
