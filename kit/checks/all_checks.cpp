#include "kit/checks/all_checks.h"

namespace kit
{

Checks allChecks()
{
    Checks all;
    for (const Checks &topic :
         {loadingChecks(), ownershipChecks(), identityChecks(), commandChecks(), errorChecks(),
          attemptChecks(), channelChecks(), transmissionChecks(), refusalChecks(), corruptionChecks(),
          stalenessChecks(), hygieneChecks(), transcriptChecks()})
        all.insert(all.end(), topic.begin(), topic.end());
    return all;
}

} // namespace kit
