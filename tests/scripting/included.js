var included = 'grün';
ShowMessage(new Error().fileName);
nothing.here;
