/* SPDX-License-Identifier: Apache-2.0
 *
 * What the filter should sound like: a gain of 6 dB makes a ramp nearly twice as loud. That it keeps to the
 * interface is tested by kest-player --check. */
#include <stdio.h>
#include <ze_kest/harness.h>

#define SAMPLES 64

int main(void) {
  const ZE_KEST_ModuleFilter_s *pstKind = ze_kest_module(ZE_KEST_MODULE_ABI, 0);
  const ZE_KEST_HarnessSetup_s stSetup = {.u32Size = sizeof(stSetup),
                                          .u32Channels = 1,
                                          .u32SampleRate = 48000,
                                          .u32BitWidth = 16,
                                          .u32InputSamples = SAMPLES,
                                          .u32OutputSamples = SAMPLES,
                                          .u32MaxSamples = SAMPLES};
  ZE_KEST_Harness_s *pstHarness = NULL;
  ZE_KEST_HarnessTurn_s stTurn;
  int32_t as32Samples[SAMPLES];
  for (int32_t i = 0; i < SAMPLES; ++i)
    as32Samples[i] = 100 * i;

  if (ze_kest_Harness_Open(&stSetup, &pstHarness) != ZE_KEST_OK) return 1;
  if (ze_kest_Harness_Create(pstHarness, pstKind) != ZE_KEST_OK) {
    fprintf(stderr, "cannot be created: %s\n", ze_kest_Harness_Error(pstHarness));
    return 1;
  }
  pstKind->pfnSet(ze_kest_Harness_Self(pstHarness), 0, 60);
  ze_kest_Harness_Fill(pstHarness, as32Samples, SAMPLES);
  ze_kest_Harness_Turn(pstHarness, 1, &stTurn);
  const uint32_t u32Taken = ze_kest_Harness_Take(pstHarness, as32Samples, SAMPLES);
  ze_kest_Harness_Close(pstHarness);

  printf("%s\n%u samples came out, sample 50 is %d\n", stTurn.szSeen, (unsigned)u32Taken,
         (int)as32Samples[50]);
  return stTurn.u32Faults == 0 && u32Taken == SAMPLES && as32Samples[50] > 9970 && as32Samples[50] < 9980 ? 0
                                                                                                          : 1;
}
