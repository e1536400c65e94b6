/* SPDX-License-Identifier: Apache-2.0
 *
 * A TCG plugin for qemu that counts executed instructions and prints the number as one line on standard error
 * when the program ends. All instructions of a block count when it is entered, including conditional ones
 * that are skipped. */
#include <inttypes.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

/* The part of qemu's plugin interface that is used here; Debian ships no header for it. */
typedef uint64_t qemu_plugin_id_t;
struct qemu_plugin_tb;
enum { kApiVersion = 1, kInlineAddU64 = 0 };
size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb *tb);
void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                           void (*translated)(qemu_plugin_id_t id,
                                                              struct qemu_plugin_tb *tb));
void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb *tb, int operation, void *counter,
                                              uint64_t value);
void qemu_plugin_register_atexit_cb(qemu_plugin_id_t id, void (*ended)(qemu_plugin_id_t id, void *data),
                                    void *data);

int qemu_plugin_version = kApiVersion;

static uint64_t u64Executed;

static void CountBlock(qemu_plugin_id_t id, struct qemu_plugin_tb *tb) {
  (void)id;
  qemu_plugin_register_vcpu_tb_exec_inline(tb, kInlineAddU64, &u64Executed, qemu_plugin_tb_n_insns(tb));
}

static void PrintCount(qemu_plugin_id_t id, void *data) {
  (void)id;
  (void)data;
  fprintf(stderr, "%" PRIu64 "\n", u64Executed);
}

int qemu_plugin_install(qemu_plugin_id_t id, const void *info, int argc, char **argv) {
  (void)info;
  (void)argc;
  (void)argv;
  qemu_plugin_register_vcpu_tb_trans_cb(id, CountBlock);
  qemu_plugin_register_atexit_cb(id, PrintCount, NULL);
  return 0;
}
