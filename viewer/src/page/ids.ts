/** Element ids that keys go to. */
export const searchId = 'search';
export const openId = 'open';
export const reloadId = 'reload';
