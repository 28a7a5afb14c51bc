import tseslint from 'typescript-eslint';

import { rules } from '../eslint.rules.mjs';

export default rules(tseslint, { projectService: true, tsconfigRootDir: import.meta.dirname });
