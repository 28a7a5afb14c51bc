import tseslint from 'typescript-eslint';

import { rules } from '../eslint.rules.mjs';

export default [
  ...rules(tseslint, {
    project: ['./tsconfig.json', './tsconfig.worker.json'],
    tsconfigRootDir: import.meta.dirname,
  }),
  // index.html has what the page looks for in it.
  { rules: { '@typescript-eslint/no-non-null-assertion': 'off' } },
];
