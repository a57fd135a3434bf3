/** "1.0.0" */
export const version: string;
