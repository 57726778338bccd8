import { readdirSync, readFileSync } from 'node:fs';

/** Memory of the largest process that draws pages, in megabytes, as the system counts it. */
export function pageMemory(): number {
  let largest = 0;
  for (const id of readdirSync('/proc').filter((name) => /^\d+$/.test(name))) {
    try {
      if (!readFileSync(`/proc/${id}/cmdline`, 'latin1').includes('--type=renderer')) continue;
      const [, kilobytes] = /^VmHWM:\s*(\d+)/m.exec(readFileSync(`/proc/${id}/status`, 'latin1')) ?? [];
      largest = Math.max(largest, Number(kilobytes) / 1024);
    } catch {
      // It has ended meanwhile.
    }
  }
  return largest;
}
