// The build makes the languages of the catalogues in po/.
import type { Language } from "../language.js";

declare const language: Language;
export default language;
