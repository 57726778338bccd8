import type { Difference } from '../record/call_tree';
import { change } from '../record/compare';
import { formatCount, formatRatio, formatTime } from './format';

/** A box of the difference in both records, and what became of it. */
export function differenceTexts({ before, after }: Pick<Difference, 'before' | 'after'>): string[] {
  const { difference, ratio } = change(before?.total ?? 0, after?.total ?? 0);
  return [
    before ? `1: ${formatTime(before.total)}, ${formatCount(before.count)} times` : 'only in 2',
    after ? `2: ${formatTime(after.total)}, ${formatCount(after.count)} times` : 'only in 1',
    `${difference > 0 ? '+' : ''}${formatTime(difference)}${before && after ? ` ${formatRatio(ratio)}` : ''}`,
  ];
}
